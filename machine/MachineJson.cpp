#include "machine/MachineJson.h"

#include "machine/EndpointJson.h"
#include "machine/FaultJson.h"
#include "machine/JsonDocument.h"
#include "machine/JsonValues.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace machine {

namespace {

using nlohmann::ordered_json;

WindowsVersion ReadVersion(const JsonPlace& place)
{
    constexpr const char* Kind = R"(a text "major.minor", like "10.0")";
    const std::string text = place.Text(Kind);
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string major = text.substr(0, point);
    const std::string minor = text.substr(std::min(point + 1, text.size()));
    for (const std::string& number : {major, minor})
        if (number.empty() || number.size() > 3 || number.find_first_not_of("0123456789") != std::string::npos)
            place.Refuse(std::string("must be ") + Kind);
    return {static_cast<WORD>(std::stoul(major)), static_cast<WORD>(std::stoul(minor))};
}

using KeyNames = std::set<std::wstring, RegistryNameOrder>;

std::wstring ReadKeyName(const JsonPlace& place)
{
    std::wstring name = ReadWideText(place);
    if (name.empty() || name.size() > 255 || name.find_first_of(std::wstring(L"\\\0", 2)) != std::wstring::npos)
        place.Refuse("must be a key name: 1 to 255 characters, no backslash and no NUL");
    return name;
}

// Those of both flows; the registered endpoints have theirs already.
std::pair<std::vector<std::wstring>, std::vector<std::wstring>> ReadRegistryKeys(const JsonPlace& place,
                                                                                 const std::vector<Endpoint>& endpoints)
{
    KeyNames renderKeys, captureKeys;
    for (const Endpoint& endpoint : endpoints)
        if (endpoint.registered)
            (endpoint.flow == eCapture ? captureKeys : renderKeys).insert(LowerGuidText(endpoint.guid));
    constexpr const char* Taken = "is the name of another key";
    std::vector<std::wstring> render, capture;
    place.AllowOnly({"render", "capture"});
    place.Optional("render", render, ListOf(Unique(ReadKeyName, renderKeys, Taken)));
    place.Optional("capture", capture, ListOf(Unique(ReadKeyName, captureKeys, Taken)));
    return {render, capture};
}

void NoteOpenConnections(const Connections& connections, const MachineDescription& machine)
{
    for (const auto& [place, address] : connections) {
        const TopologyDescription* const topology = machine.FindTopology(address.deviceId);
        const PartDescription* const part = topology == nullptr ? nullptr : topology->FindPart(address.localId);
        if (part == nullptr || !part->connectorType)
            place.Note("names no connector of this machine");
    }
}

MachineDescription ReadDescription(const JsonPlace& root)
{
    root.AllowOnly(
        {"$schema", "description", "windowsVersion", "endpoints", "devices", "registryKeys", "faults", "notes"});
    std::string note;
    for (const char* const name : {"$schema", "description"})
        root.Optional(name, note, [](const JsonPlace& place) { return place.Text(); });

    MachineDescription machine;
    DeviceNames names;
    root.Required("windowsVersion", machine.windowsVersion, ReadVersion);
    names.complete = root.Required("endpoints", machine.endpoints,
                                   ListOf([&](const JsonPlace& place) { return ReadEndpoint(place, names); }));
    root.Optional("devices", machine.devices,
                  ListOf([&](const JsonPlace& place) { return ReadAdapterDevice(place, names); }));
    if (names.complete)
        NoteOpenConnections(names.connections, machine);
    auto furtherKeys = std::tie(machine.furtherRenderKeys, machine.furtherCaptureKeys);
    root.Optional("registryKeys", furtherKeys,
                  [&](const JsonPlace& place) { return ReadRegistryKeys(place, machine.endpoints); });
    root.Optional("faults", machine.faults,
                  [&](const JsonPlace& place) { return ReadFaults(place, names.complete ? &machine : nullptr); });
    root.Optional("notes", machine.notes, ListOf(ReadWideText));
    return machine;
}

ordered_json WriteDescription(const MachineDescription& machine)
{
    const WindowsVersion& version = machine.windowsVersion;
    ordered_json written;
    written["windowsVersion"] = std::to_string(version.major) + "." + std::to_string(version.minor);
    written["endpoints"] = ordered_json::array();
    for (const Endpoint& endpoint : machine.endpoints)
        written["endpoints"].push_back(WriteEndpoint(endpoint));
    for (const AdapterDevice& device : machine.devices)
        written["devices"].push_back(WriteAdapterDevice(device));
    for (const std::wstring& name : machine.furtherRenderKeys)
        written["registryKeys"]["render"].push_back(WriteWideText(name));
    for (const std::wstring& name : machine.furtherCaptureKeys)
        written["registryKeys"]["capture"].push_back(WriteWideText(name));
    for (const Fault& fault : machine.faults)
        written["faults"].push_back(WriteFault(fault));
    for (const std::wstring& note : machine.notes)
        written["notes"].push_back(WriteWideText(note));
    return written;
}

}  // namespace

MachineDescription ParseMachine(const std::string& text, const std::string& source)
{
    JsonMistakes mistakes(source);
    const ordered_json document = ParseJson(text, mistakes);
    MachineDescription machine;
    JsonPlace::Root(document, mistakes).Try([&](const JsonPlace& root) { machine = ReadDescription(root); });
    mistakes.ThrowIfAny();
    return machine;
}

MachineDescription ReadMachine(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    // An empty file is read, too: it just gives nothing to insert.
    const bool empty = file.peek() == std::ifstream::traits_type::eof();
    if (!file.is_open() || file.bad() || (!empty && !(text << file.rdbuf())))
        throw std::runtime_error(path + ": cannot be read");
    return ParseMachine(text.str(), path);
}

std::string WriteMachine(const MachineDescription& machine)
{
    std::string text = FormatJson(WriteDescription(machine));
    if (ParseMachine(text, "the machine as JSON") != machine)
        throw std::runtime_error("the machine as JSON: it holds what this form cannot say");
    return text;
}

}  // namespace machine
