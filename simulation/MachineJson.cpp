#include "MachineJson.h"

#include "CallMonitor.h"
#include "JsonPlace.h"
#include "RegistryValueJson.h"
#include "Utf16.h"

#include <objbase.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace simulation {

namespace {

// The value that a name stands for.
template <class Value>
Value Named(const JsonPlace& place, const std::map<std::string, Value>& names)
{
    const auto found = names.find(place.Text());
    if (found != names.end())
        return found->second;
    std::string list;
    for (const auto& [name, value] : names)
        list += (list.empty() ? "\"" : ", \"") + name + "\"";
    place.Refuse("must be one of " + list);
}

std::wstring WideText(const JsonPlace& place) { return Utf8ToUtf16(place.Text()); }

GUID ReadGuid(const JsonPlace& place)
{
    GUID guid{};
    const std::wstring text = WideText(place);
    if (text.empty() || text.front() != L'{' || FAILED(CLSIDFromString(text.c_str(), &guid)))
        place.Refuse("must be a GUID in braces");
    return guid;
}

WindowsVersion ReadVersion(const JsonPlace& place)
{
    const std::string text = place.Text();
    unsigned major = 0;
    unsigned minor = 0;
    int used = 0;
    if (std::sscanf(text.c_str(), "%3u.%3u%n", &major, &minor, &used) != 2 ||
        static_cast<std::size_t>(used) != text.size())
        place.Refuse("must be \"major.minor\"");
    return {static_cast<WORD>(major), static_cast<WORD>(minor)};
}

Endpoint ReadEndpoint(const JsonPlace& place)
{
    place.AllowOnly({"guid", "flow", "state", "deviceId", "friendlyName", "guidPropertyText", "registered",
                     "properties", "fxProperties"});
    Endpoint endpoint;
    endpoint.guid = ReadGuid(place.Required("guid"));
    endpoint.flow = Named<EDataFlow>(place.Required("flow"), {{"render", eRender}, {"capture", eCapture}});
    if (const auto state = place.Optional("state"))
        endpoint.state = Named<DWORD>(*state, {{"active", DEVICE_STATE_ACTIVE},
                                               {"disabled", DEVICE_STATE_DISABLED},
                                               {"notPresent", DEVICE_STATE_NOTPRESENT},
                                               {"unplugged", DEVICE_STATE_UNPLUGGED}});
    endpoint.friendlyName = WideText(place.Required("friendlyName"));
    const auto deviceId = place.Optional("deviceId");
    endpoint.deviceId = deviceId ? WideText(*deviceId) : DefaultDeviceId(endpoint);
    const auto guidText = place.Optional("guidPropertyText");
    endpoint.guidPropertyText = guidText ? WideText(*guidText) : UpperGuidText(endpoint.guid);
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

std::vector<std::wstring> ReadKeyNames(const JsonPlace& place)
{
    std::vector<std::wstring> names;
    for (const JsonPlace& element : place.Elements()) {
        names.push_back(WideText(element));
        if (names.back().empty() || names.back().size() > 255 || names.back().find(L'\\') != std::wstring::npos)
            element.Refuse("must be a key name: 1 to 255 characters, no backslash");
    }
    return names;
}

Fault ReadFault(const JsonPlace& place)
{
    place.AllowOnly({"call", "occurrence", "result"});
    Fault fault;
    fault.call = place.Required("call").Text();
    if (!IsKnownCall(fault.call))
        place.Required("call").Refuse("is no call that can be made to fail");
    if (const auto occurrence = place.Optional("occurrence"))
        fault.occurrence = static_cast<unsigned>(occurrence->Number(1, 1000000));
    const JsonPlace result = place.Required("result");
    if (result.IsText()) {
        unsigned code = 0;
        int used = 0;
        const std::string text = result.Text();
        if (std::sscanf(text.c_str(), "0x%8x%n", &code, &used) != 1 || static_cast<std::size_t>(used) != text.size())
            result.Refuse("must be a number or a text like \"0x80004005\"");
        fault.result = static_cast<LONG>(code);
    } else {
        fault.result = static_cast<LONG>(result.Number(INT32_MIN, INT32_MAX));
    }
    if (!IsFailureOf(fault.call, fault.result))
        result.Refuse("is no failure of that call");
    return fault;
}

void RefuseRepeatedEndpoints(const std::vector<JsonPlace>& places, const std::vector<Endpoint>& endpoints)
{
    std::set<std::wstring> seen;
    for (std::size_t index = 0; index < endpoints.size(); ++index) {
        if (!seen.insert(UpperGuidText(endpoints[index].guid)).second)
            places[index].Required("guid").Refuse("is the GUID of an earlier endpoint too");
        if (!seen.insert(L"id " + endpoints[index].deviceId).second)
            places[index].Refuse("has the device id of an earlier endpoint");
    }
}

}  // namespace

MachineDescription ParseMachine(const std::string& text, const std::string& source)
{
    const nlohmann::json document = ParseJson(text, source);
    const JsonPlace root = JsonPlace::Root(document, source);
    root.AllowOnly({"$schema", "description", "windowsVersion", "endpoints", "registryKeys", "faults"});
    for (const char* const note : {"$schema", "description"})
        if (const auto place = root.Optional(note))
            (void)place->Text();

    MachineDescription machine;
    machine.windowsVersion = ReadVersion(root.Required("windowsVersion"));
    const std::vector<JsonPlace> endpoints = root.Required("endpoints").Elements();
    for (const JsonPlace& endpoint : endpoints)
        machine.endpoints.push_back(ReadEndpoint(endpoint));
    RefuseRepeatedEndpoints(endpoints, machine.endpoints);
    if (const auto keys = root.Optional("registryKeys")) {
        keys->AllowOnly({"render", "capture"});
        if (const auto render = keys->Optional("render"))
            machine.furtherRenderKeys = ReadKeyNames(*render);
        if (const auto capture = keys->Optional("capture"))
            machine.furtherCaptureKeys = ReadKeyNames(*capture);
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

}  // namespace simulation
