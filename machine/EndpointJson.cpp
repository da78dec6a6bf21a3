#include "machine/EndpointJson.h"

#include "machine/FilterJson.h"
#include "machine/JsonValues.h"
#include "machine/RegistryValueJson.h"

namespace machine {

namespace {

using nlohmann::ordered_json;

constexpr NamedValue<EDataFlow> Flows[] = {{"render", eRender}, {"capture", eCapture}};
constexpr NamedValue<DWORD> States[] = {
    {"active", DEVICE_STATE_ACTIVE},
    {"disabled", DEVICE_STATE_DISABLED},
    {"notPresent", DEVICE_STATE_NOTPRESENT},
    {"unplugged", DEVICE_STATE_UNPLUGGED},
};
constexpr const char* DeviceIdTaken = "is the device id of an earlier endpoint or device too";

GUID ReadEndpointGuid(const JsonPlace& place, DeviceNames& names)
{
    const GUID guid = ReadGuid(place);
    if (!names.endpointGuids.insert(LowerGuidText(guid)).second)
        place.Refuse("is the GUID of an earlier endpoint too");
    return guid;
}

// GUID, flow and the device id that can follow from them.
void ReadIdentity(const JsonPlace& place, Endpoint& endpoint, DeviceNames& names)
{
    bool known =
        place.Required("guid", endpoint.guid, [&](const JsonPlace& guid) { return ReadEndpointGuid(guid, names); });
    known &= place.Required("flow", endpoint.flow, OneOf(Flows));
    std::optional<std::wstring> deviceId;
    const bool read = place.Optional("deviceId", deviceId, Unique(ReadWideText, names.deviceIds, DeviceIdTaken));
    endpoint.deviceId = deviceId.value_or(DefaultDeviceId(endpoint));
    if (known && read && !deviceId && !names.deviceIds.insert(endpoint.deviceId).second)
        place.Note("would have the device id of an earlier endpoint or device");
    names.complete = names.complete && known && read;
}

}  // namespace

Endpoint ReadEndpoint(const JsonPlace& place, DeviceNames& names)
{
    place.AllowOnly({"guid", "flow", "state", "deviceId", "friendlyName", "guidPropertyText", "topology", "registered",
                     "properties", "fxProperties"});
    Endpoint endpoint;
    ReadIdentity(place, endpoint, names);
    place.Optional("state", endpoint.state, OneOf(States));
    place.Required("friendlyName", endpoint.friendlyName, ReadWideText);
    endpoint.guidPropertyText = UpperGuidText(endpoint.guid);
    place.Optional("guidPropertyText", endpoint.guidPropertyText, ReadWideText);
    names.complete &= place.Optional("topology", endpoint.topology, [&](const JsonPlace& topology) {
        return ReadTopology(topology, names.connections);
    });
    place.Optional("registered", endpoint.registered, [](const JsonPlace& registered) { return registered.Flag(); });
    place.Optional("properties", endpoint.properties, ReadRegistryValues);
    place.Optional("fxProperties", endpoint.fxProperties, ReadRegistryValues);
    if (!endpoint.registered && (endpoint.properties || endpoint.fxProperties))
        place.Note("has registry values, but is not registered");
    return endpoint;
}

AdapterDevice ReadAdapterDevice(const JsonPlace& place, DeviceNames& names)
{
    place.AllowOnly({"id", "topology", "filter"});
    AdapterDevice device;
    names.complete &= place.Required("id", device.id, Unique(ReadWideText, names.deviceIds, DeviceIdTaken));
    names.complete &= place.Required("topology", device.topology, [&](const JsonPlace& topology) {
        return ReadTopology(topology, names.connections);
    });
    place.Optional("filter", device.filter, ReadFilter);
    return device;
}

ordered_json WriteEndpoint(const Endpoint& endpoint)
{
    ordered_json written;
    written["guid"] = WriteGuid(endpoint.guid);
    written["flow"] = WriteName(Flows, endpoint.flow);
    if (endpoint.state != DEVICE_STATE_ACTIVE)
        written["state"] = WriteName(States, endpoint.state);
    if (endpoint.deviceId != DefaultDeviceId(endpoint))
        written["deviceId"] = WriteWideText(endpoint.deviceId);
    written["friendlyName"] = WriteWideText(endpoint.friendlyName);
    if (endpoint.guidPropertyText != UpperGuidText(endpoint.guid))
        written["guidPropertyText"] = WriteWideText(endpoint.guidPropertyText);
    if (endpoint.topology != UnconnectedTopology())
        written["topology"] = WriteTopology(endpoint.topology);
    if (!endpoint.registered)
        written["registered"] = false;
    if (endpoint.properties)
        written["properties"] = WriteRegistryValues(*endpoint.properties);
    if (endpoint.fxProperties)
        written["fxProperties"] = WriteRegistryValues(*endpoint.fxProperties);
    return written;
}

ordered_json WriteAdapterDevice(const AdapterDevice& device)
{
    ordered_json written;
    written["id"] = WriteWideText(device.id);
    written["topology"] = WriteTopology(device.topology);
    if (device.filter)
        written["filter"] = WriteFilter(*device.filter);
    return written;
}

}  // namespace machine
