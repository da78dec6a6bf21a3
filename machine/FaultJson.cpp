#include "machine/FaultJson.h"

#include "machine/JsonValues.h"
#include "machine/PlatformCalls.h"
#include "machine/Utf16.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace machine {

namespace {

using nlohmann::ordered_json;

constexpr NamedValue<ObjectKind> ObjectKinds[] = {
    {"endpoint or adapter device, by its device id", ObjectKind::Device},
    {"endpoint, by its device id", ObjectKind::Endpoint},
    {"adapter device with a filter, by its device id", ObjectKind::Filter},
    {"part, as \"<device id>/00010000\"", ObjectKind::Part},
    {"connector, as \"<device id>/00010000\"", ObjectKind::Connector},
    {"input selector, as \"<device id>/00020000\"", ObjectKind::InputSelector},
    {"output selector, as \"<device id>/00020000\"", ObjectKind::OutputSelector},
    {"device, by its device id, or part, as \"<device id>/00010000\"", ObjectKind::DeviceOrPart},
    {R"(registry key of the endpoints of a flow, as "SOFTWARE\...\Audio\Render", or of an endpoint's properties, as )"
     R"("SOFTWARE\...\Audio\Render\{0A000000-0000-4000-8000-0000000000FF}\FxProperties")",
     ObjectKind::Key},
};

// `device` is null for an endpoint.
bool IsDevice(ObjectKind kind, const AdapterDevice* device)
{
    return kind == ObjectKind::Device || kind == ObjectKind::DeviceOrPart ||
           (kind == ObjectKind::Endpoint && device == nullptr) ||
           (kind == ObjectKind::Filter && device != nullptr && device->filter);
}

bool IsPart(ObjectKind kind, const PartDescription& part)
{
    return kind == ObjectKind::Part || kind == ObjectKind::DeviceOrPart ||
           (kind == ObjectKind::Connector && part.connectorType) ||
           (kind == ObjectKind::InputSelector && part.selector == SelectorKind::Input) ||
           (kind == ObjectKind::OutputSelector && part.selector == SelectorKind::Output);
}

bool HasKey(const MachineDescription& machine, const std::wstring& path)
{
    return path == EndpointsKeyPath(eRender) || path == EndpointsKeyPath(eCapture) ||
           std::any_of(machine.endpoints.begin(), machine.endpoints.end(), [&](const Endpoint& endpoint) {
               return path == PropertiesKeyPath(endpoint, L"Properties") ||
                      path == PropertiesKeyPath(endpoint, L"FxProperties");
           });
}

bool HasObject(const MachineDescription& machine, ObjectKind kind, const std::wstring& object)
{
    if (kind == ObjectKind::Key)
        return HasKey(machine, object);
    const auto names = [&](const std::wstring& deviceId, const TopologyDescription& topology,
                           const AdapterDevice* device) {
        return (object == deviceId && IsDevice(kind, device)) ||
               std::any_of(topology.parts.begin(), topology.parts.end(), [&](const PartDescription& part) {
                   return IsPart(kind, part) && object == GlobalId({deviceId, part.localId});
               });
    };
    return std::any_of(
               machine.endpoints.begin(), machine.endpoints.end(),
               [&](const Endpoint& endpoint) { return names(endpoint.deviceId, endpoint.topology, nullptr); }) ||
           std::any_of(machine.devices.begin(), machine.devices.end(),
                       [&](const AdapterDevice& device) { return names(device.id, device.topology, &device); });
}

const PlatformCall* ReadCall(const JsonPlace& place)
{
    const std::string name = place.Text();
    const PlatformCall* const call = FindPlatformCall(name);
    if (call != nullptr)
        return call;
    std::string names;
    for (const PlatformCall& known : PlatformCalls())
        names += (names.empty() ? "" : ", ") + std::string(known.name);
    place.Refuse("names no call that can be made to fail; these can: " + names);
}

std::string ReadObject(const JsonPlace& place, const PlatformCall& call, const MachineDescription* machine)
{
    std::string object = place.Text();
    if (call.object == ObjectKind::None)
        place.Refuse("belongs to a call on an object of the machine, which " + std::string(call.name) + " is not");
    if (object.empty() || (machine != nullptr && !HasObject(*machine, call.object, Utf8ToUtf16(object))))
        place.Refuse("must name an object of this machine on which " + std::string(call.name) +
                     " is called: " + WriteName(ObjectKinds, call.object).get<std::string>());
    return object;
}

LONG ReadResult(const JsonPlace& place)
{
    constexpr const char* Kind = "a whole number or a text like \"0x80004005\"";
    using Limits = std::numeric_limits<std::int32_t>;
    if (place.IsNumber())
        return static_cast<LONG>(place.Number(Limits::min(), Limits::max()));
    const std::string text = place.Text(Kind);
    if (!text.starts_with("0x") || text.size() < 3 || text.size() > 10 ||
        text.find_first_not_of("0123456789abcdefABCDEF", 2) != std::string::npos)
        place.Refuse(std::string("must be ") + Kind);
    return static_cast<LONG>(std::stoul(text, nullptr, 16));
}

Fault ReadFault(const JsonPlace& place, const MachineDescription* machine)
{
    place.AllowOnly({"call", "object", "arguments", "occurrence", "result"});
    Fault fault;
    const PlatformCall* call = nullptr;
    if (place.Required("call", call, ReadCall))
        fault.call = call->name;
    place.Optional("object", fault.object, [&](const JsonPlace& object) {
        return call == nullptr ? object.Text() : ReadObject(object, *call, machine);
    });
    place.Optional("arguments", fault.arguments, [](const JsonPlace& arguments) {
        std::string text = arguments.Text();
        if (text.empty())
            arguments.Refuse("must be the arguments with which a call is recorded");
        return text;
    });
    place.Optional("occurrence", fault.occurrence,
                   [](const JsonPlace& occurrence) { return static_cast<unsigned>(occurrence.Number(1, 1000000)); });
    place.Required("result", fault.result, [&](const JsonPlace& result) {
        const LONG code = ReadResult(result);
        if (call != nullptr && !call->CanGive(code))
            result.Refuse("is no failure of that call, nor a success code other than S_OK");
        return code;
    });
    return fault;
}

bool SpeakOfSameCalls(const Fault& left, const Fault& right)
{
    return left.call == right.call && left.object == right.object && left.arguments == right.arguments &&
           left.occurrence == right.occurrence;
}

}  // namespace

bool NamesObjectOf(const Fault& fault, const MachineDescription& machine)
{
    return HasObject(machine, FindPlatformCall(fault.call)->object, Utf8ToUtf16(fault.object));
}

std::vector<Fault> ReadFaults(const JsonPlace& place, const MachineDescription* machine)
{
    std::vector<Fault> faults;
    for (const JsonPlace& element : place.Elements()) {
        Fault fault;
        const bool read = element.Try([&](const JsonPlace& readable) { fault = ReadFault(readable, machine); });
        if (read && std::any_of(faults.begin(), faults.end(),
                                [&](const Fault& earlier) { return SpeakOfSameCalls(earlier, fault); }))
            element.Note("speaks of the same calls as an earlier fault");
        faults.push_back(std::move(fault));
    }
    return faults;
}

ordered_json WriteFault(const Fault& fault)
{
    ordered_json written;
    written["call"] = fault.call;
    if (!fault.object.empty())
        written["object"] = fault.object;
    if (!fault.arguments.empty())
        written["arguments"] = fault.arguments;
    if (fault.occurrence)
        written["occurrence"] = *fault.occurrence;
    if (fault.result < 0) {
        char text[11];
        std::snprintf(text, sizeof(text), "0x%08x", static_cast<unsigned int>(fault.result));
        written["result"] = text;
    } else {
        written["result"] = fault.result;
    }
    return written;
}

}  // namespace machine
