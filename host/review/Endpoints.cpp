#include "host/review/Endpoints.h"

#include "host/review/Calls.h"
#include "host/review/DiscoveryReport.h"
#include "host/review/ShownText.h"
#include "machine/Utf16.h"

#include <algorithm>

namespace host {

namespace {

struct State {
    DWORD value;
    const char* name;
};
constexpr State States[] = {{DEVICE_STATE_ACTIVE, "active"},
                            {DEVICE_STATE_DISABLED, "disabled"},
                            {DEVICE_STATE_NOTPRESENT, "not present"},
                            {DEVICE_STATE_UNPLUGGED, "unplugged"}};

std::string StateName(DWORD value)
{
    for (const State& row : States)
        if (row.value == value)
            return row.name;
    return "unknown";
}

// The walk knows an endpoint by what its property tells, the registry by its key.
std::vector<FoundModule> Select(const Findings& findings, const std::string& guid, std::string_view location,
                                std::string_view level)
{
    std::vector<FoundModule> modules;
    std::copy_if(findings.modules.begin(), findings.modules.end(), std::back_inserter(modules),
                 [&](const FoundModule& module) {
                     return module.endpointGuid == guid && module.location == location && module.level == level;
                 });
    return modules;
}

bool IsReportedBy(const FoundModule& module, const Walk& walk)
{
    return std::any_of(walk.pins.begin(), walk.pins.end(),
                       [&module](const AskedPin& pin) { return pin.id == module.pin; });
}

// A list that promised modules of which none was taken.
void NoteRefusedLists(EndpointView& view)
{
    for (AskedPin& pin : view.walk->pins) {
        const bool taken = std::any_of(view.firmware.begin(), view.firmware.end(),
                                       [&pin](const FoundModule& module) { return module.pin == pin.id; });
        if (taken || !pin.why.empty())
            continue;
        view.walk->damaged = true;
        pin.why = "promises " + std::to_string(pin.count.value_or(0)) + " modules that its list does not hold";
        view.walk->why += (view.walk->why.empty() ? "pin " : "; pin ") + pin.id + " " + pin.why;
    }
    if (!view.firmware.empty())
        view.walk->why.clear();
}

// Whether a failed call kept endpoints of the flow from the run.
bool ListingFailed(const rehearsal::Outcome& outcome, const EndpointView& view)
{
    const std::string end = view.flow == "capture" ? "\\Capture" : "\\Render";
    return std::any_of(outcome.events.begin(), outcome.events.end(), [&end](const rehearsal::Event& event) {
        const auto* const call = std::get_if<simulation::CallRecord>(&event);
        return call != nullptr && (call->call == "RegEnumKeyExW" || call->call == "RegQueryInfoKeyW") &&
               call->object.ends_with(end) && AnswerOf(*call) == Answer::Failed;
    });
}

std::string WhyNoWalk(const EndpointView& view, const rehearsal::Outcome& outcome)
{
    if (view.state != "active")
        return "not active";
    return outcome.failure ? "the run ended before it" : "not walked";
}

EndpointView Read(const machine::Endpoint& endpoint, const std::vector<Walk>& walks, const rehearsal::Outcome& outcome,
                  const Findings& findings)
{
    EndpointView view;
    view.flow = endpoint.flow == eCapture ? "capture" : "render";
    view.state = StateName(endpoint.state);
    view.name = machine::Utf16ToUtf8(endpoint.friendlyName);
    view.guid = machine::Utf16ToUtf8(machine::LowerGuidText(endpoint.guid));
    view.deviceId = machine::Utf16ToUtf8(endpoint.deviceId);
    view.effects = Select(findings, view.guid, "APO", "Not wrapped");
    view.wrapped = Select(findings, view.guid, "APO", "Wrapped");
    const bool any = !view.effects.empty() || !view.wrapped.empty();
    view.effectsKnown =
        findings.modulesTold && endpoint.state == DEVICE_STATE_ACTIVE && (any || !ListingFailed(outcome, view));
    view.firmwareKnown = findings.modulesTold;
    const auto walk = std::find_if(walks.begin(), walks.end(),
                                   [&view](const Walk& candidate) { return candidate.deviceId == view.deviceId; });
    if (walk == walks.end()) {
        view.why = WhyNoWalk(view, outcome);
        return view;
    }
    view.walk = *walk;
    if (!findings.modulesTold && walk->why.empty())
        view.walk->why = "the run ended before its modules were told";
    const std::string told = LowerCase(machine::Utf16ToUtf8(endpoint.guidPropertyText));
    for (FoundModule& module : Select(findings, told, "FW", "Not wrapped"))
        if (IsReportedBy(module, *walk))
            view.firmware.push_back(std::move(module));
    if (findings.modulesTold)
        NoteRefusedLists(view);
    view.why = view.walk->why;
    return view;
}

}  // namespace

std::vector<EndpointView> ReadEndpoints(const machine::MachineDescription& machine, const rehearsal::Outcome& outcome,
                                        const Findings& findings)
{
    const std::vector<Walk> walks = ReadWalks(outcome);
    std::vector<EndpointView> views;
    for (const machine::Endpoint& endpoint : machine.endpoints)
        views.push_back(Read(endpoint, walks, outcome, findings));
    return views;
}

std::string ModuleName(const FoundModule& module)
{
    return module.makersName.empty() ? module.guid : module.makersName;
}

}  // namespace host
