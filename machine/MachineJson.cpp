#include "machine/MachineJson.h"

#include "machine/JsonPlace.h"
#include "machine/JsonValues.h"
#include "machine/PlatformCalls.h"
#include "machine/RegistryValueJson.h"
#include "machine/TopologyJson.h"
#include "machine/Utf16.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace machine {

namespace {

// A text of one to `most` digits of the base.
bool IsNumberText(const std::string& text, std::size_t most, const char* digits)
{
    return !text.empty() && text.size() <= most && text.find_first_not_of(digits) == std::string::npos;
}

WindowsVersion ReadVersion(const JsonPlace& place)
{
    const std::string text = place.Text();
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string major = text.substr(0, point);
    const std::string minor = text.substr(std::min(point + 1, text.size()));
    if (!IsNumberText(major, 3, "0123456789") || !IsNumberText(minor, 3, "0123456789"))
        place.Refuse("must be \"major.minor\"");
    return {static_cast<WORD>(std::stoul(major)), static_cast<WORD>(std::stoul(minor))};
}

Endpoint ReadEndpoint(const JsonPlace& place)
{
    place.AllowOnly({"guid", "flow", "state", "deviceId", "friendlyName", "guidPropertyText", "topology", "registered",
                     "properties", "fxProperties"});
    Endpoint endpoint;
    endpoint.guid = ReadGuid(place.Required("guid"));
    endpoint.flow = ReadNamed<EDataFlow>(place.Required("flow"), {{"render", eRender}, {"capture", eCapture}});
    if (const auto state = place.Optional("state"))
        endpoint.state = ReadNamed<DWORD>(*state, {{"active", DEVICE_STATE_ACTIVE},
                                                   {"disabled", DEVICE_STATE_DISABLED},
                                                   {"notPresent", DEVICE_STATE_NOTPRESENT},
                                                   {"unplugged", DEVICE_STATE_UNPLUGGED}});
    endpoint.friendlyName = ReadWideText(place.Required("friendlyName"));
    const auto deviceId = place.Optional("deviceId");
    endpoint.deviceId = deviceId ? ReadWideText(*deviceId) : DefaultDeviceId(endpoint);
    const auto guidText = place.Optional("guidPropertyText");
    endpoint.guidPropertyText = guidText ? ReadWideText(*guidText) : UpperGuidText(endpoint.guid);
    if (const auto topology = place.Optional("topology"))
        endpoint.topology = ReadTopology(*topology);
    if (const auto registered = place.Optional("registered"))
        endpoint.registered = registered->Flag();
    if (const auto values = place.Optional("properties"))
        endpoint.properties = ReadRegistryValues(*values);
    if (const auto values = place.Optional("fxProperties"))
        endpoint.fxProperties = ReadRegistryValues(*values);
    if (!endpoint.registered && (endpoint.properties || endpoint.fxProperties))
        place.Refuse("has registry values, but is not registered");
    return endpoint;
}

std::vector<std::wstring> ReadKeyNames(const JsonPlace& place, EDataFlow flow, const std::vector<Endpoint>& endpoints)
{
    std::set<std::wstring> seen;
    for (const Endpoint& endpoint : endpoints)
        if (endpoint.flow == flow && endpoint.registered)
            seen.insert(UpperGuidText(endpoint.guid));
    std::vector<std::wstring> names;
    for (const JsonPlace& element : place.Elements()) {
        names.push_back(ReadWideText(element));
        if (names.back().empty() || names.back().size() > 255 ||
            names.back().find_first_of(std::wstring(L"\\\0", 2)) != std::wstring::npos)
            element.Refuse("must be a key name: 1 to 255 characters, no backslash and no NUL");
        if (!seen.insert(FoldCase(names.back())).second)
            element.Refuse("is the name of another key");
    }
    return names;
}

Fault ReadFault(const JsonPlace& place)
{
    place.AllowOnly({"call", "object", "occurrence", "result"});
    Fault fault;
    fault.call = place.Required("call").Text();
    const PlatformCall* const call = FindPlatformCall(fault.call);
    if (call == nullptr)
        place.Required("call").Refuse("is no call that can be made to fail");
    if (const auto object = place.Optional("object")) {
        fault.object = object->Text();
        if (call->IsFunction())
            object->Refuse("belongs to a method of a simulated object");
    }
    if (const auto occurrence = place.Optional("occurrence"))
        fault.occurrence = static_cast<unsigned>(occurrence->Number(1, 1000000));
    const JsonPlace result = place.Required("result");
    if (result.IsText()) {
        const std::string text = result.Text();
        if (!text.starts_with("0x") || !IsNumberText(text.substr(2), 8, "0123456789abcdefABCDEF"))
            result.Refuse("must be a number or a text like \"0x80004005\"");
        fault.result = static_cast<LONG>(std::stoul(text, nullptr, 16));
    } else {
        fault.result = static_cast<LONG>(result.Number(INT32_MIN, INT32_MAX));
    }
    if (!call->CanGive(fault.result))
        result.Refuse("is no failure of that call, nor a success code other than S_OK");
    return fault;
}

void RefuseRepeatedEndpoints(const std::vector<JsonPlace>& places, const std::vector<Endpoint>& endpoints)
{
    std::set<std::wstring> seen;
    for (std::size_t index = 0; index < endpoints.size(); ++index)
        if (!seen.insert(UpperGuidText(endpoints[index].guid)).second)
            places[index].Required("guid").Refuse("is the GUID of an earlier endpoint too");
}

// Device ids are the names by which topologies refer to each other.
void RefuseRepeatedDevices(const JsonPlace& root, const MachineDescription& machine)
{
    std::set<std::wstring> seen;
    for (const Endpoint& endpoint : machine.endpoints)
        if (!seen.insert(endpoint.deviceId).second)
            root.Required("endpoints").Refuse("hold the device id " + Utf16ToUtf8(endpoint.deviceId) + " twice");
    for (const AdapterDevice& device : machine.devices)
        if (!seen.insert(device.id).second)
            root.Required("devices").Refuse("hold the device id " + Utf16ToUtf8(device.id) + " of another device");
}

bool HasConnector(const MachineDescription& machine, const PartAddress& address)
{
    const TopologyDescription* const topology = machine.FindTopology(address.deviceId);
    const PartDescription* const part = topology == nullptr ? nullptr : topology->FindPart(address.localId);
    return part != nullptr && part->connectorType;
}

void RefuseOpenConnections(const std::vector<JsonPlace>& owners, const MachineDescription& machine)
{
    for (const JsonPlace& owner : owners) {
        const auto topology = owner.Optional("topology");
        if (!topology)
            continue;
        for (const JsonPlace& part : topology->Required("parts").Elements()) {
            const auto connectedTo = part.Optional("connectedTo");
            if (connectedTo && !HasConnector(machine, {ReadWideText(connectedTo->Required("device")),
                                                       ReadLocalId(connectedTo->Required("part"))}))
                connectedTo->Refuse("names no connector of this machine");
        }
    }
}

}  // namespace

MachineDescription ParseMachine(const std::string& text, const std::string& source)
{
    const nlohmann::json document = ParseJson(text, source);
    const JsonPlace root = JsonPlace::Root(document, source);
    root.AllowOnly({"$schema", "description", "windowsVersion", "endpoints", "devices", "registryKeys", "faults"});
    for (const char* const note : {"$schema", "description"})
        if (const auto place = root.Optional(note))
            (void)place->Text();

    MachineDescription machine;
    machine.windowsVersion = ReadVersion(root.Required("windowsVersion"));
    const std::vector<JsonPlace> endpoints = root.Required("endpoints").Elements();
    for (const JsonPlace& endpoint : endpoints)
        machine.endpoints.push_back(ReadEndpoint(endpoint));
    RefuseRepeatedEndpoints(endpoints, machine.endpoints);
    std::vector<JsonPlace> topologyOwners = endpoints;
    if (const auto devices = root.Optional("devices")) {
        for (const JsonPlace& device : devices->Elements()) {
            machine.devices.push_back(ReadAdapterDevice(device));
            topologyOwners.push_back(device);
        }
    }
    RefuseRepeatedDevices(root, machine);
    RefuseOpenConnections(topologyOwners, machine);
    if (const auto keys = root.Optional("registryKeys")) {
        keys->AllowOnly({"render", "capture"});
        if (const auto render = keys->Optional("render"))
            machine.furtherRenderKeys = ReadKeyNames(*render, eRender, machine.endpoints);
        if (const auto capture = keys->Optional("capture"))
            machine.furtherCaptureKeys = ReadKeyNames(*capture, eCapture, machine.endpoints);
    }
    if (const auto faults = root.Optional("faults"))
        for (const JsonPlace& fault : faults->Elements())
            machine.faults.push_back(ReadFault(fault));
    return machine;
}

MachineDescription ReadMachine(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf()))
        throw std::runtime_error(path + ": cannot be read");
    return ParseMachine(text.str(), path);
}

}  // namespace machine
