// Rehearses the richest example machine with every single platform call failing in turn, and compares the outcome with
// what that failure must come to. The messages of the whole run, in which nothing fails, tell what a call is made for.
#include "machine/MachineJson.h"
#include "machine/Utf16.h"
#include "rehearsal/Rehearsal.h"
#include "support/Holdings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

using machine::MachineDescription;
using simulation::CallRecord;
using Files = std::vector<std::string>;

std::string TextOf(const rehearsal::LogMessage& message) { return machine::Utf16ToUtf8(message.text) + "\n"; }

struct Rehearsed {
    std::string failure;  // empty: it completed
    std::vector<rehearsal::Event> events;
    std::string log;
    Files before;
    Files after;
};

const MachineDescription& ExampleMachine()
{
    static const auto machine = machine::ReadMachine(QOVXML_EXAMPLES "/machines/laptop-spatialf.json");
    return machine;
}

Rehearsed Rehearse(const MachineDescription& machine)
{
    const auto held = CurrentHoldings();
    const std::string xml = QOVXML_EXAMPLES "/xml/";
    const rehearsal::Outcome outcome = rehearsal::Rehearse(
        machine, {xml + "QovConfiguration.xml", xml + "QovSettings.xml", xml + "ApoPipelinesDefinition.xml"});
    EXPECT_EQ(CurrentHoldings(), held);
    EXPECT_TRUE(outcome.unusedFaults.empty());

    Rehearsed run{outcome.failure.value_or(""), outcome.events, {}, {}, {}};
    for (const rehearsal::LogMessage& message : rehearsal::Log(outcome))
        run.log += TextOf(message);
    for (const rehearsal::FileOutcome& file : outcome.files) {
        run.before.push_back(file.before.value());
        run.after.push_back(file.after.value());
    }
    return run;
}

Rehearsed RehearseWith(const machine::Fault& fault)
{
    MachineDescription machine = ExampleMachine();
    machine.faults = {fault};
    return Rehearse(machine);
}

enum class Effect {
    Throws,         // the run ends with the message
    SkipsEndpoint,  // without a message the run goes on with the next one
    SkipsPin,
    LosesModules,  // those of the endpoint's firmware, whatever else is tried to find them
    Nothing,
    Unlists,  // effects are not found
    Older,    // Windows counts as 8.0
};
using enum Effect;

struct Row {
    std::set<std::string> calls;  // none: every one
    Effect effect;
    std::string message{};  // the code follows where it ends with a blank or 0x
    std::string subject{};  // what the call's holds
};
using Rows = std::vector<Row>;

const Rows AnyStep = {{{"StringFromCLSID"}, Throws, "StringFromCLSID() call failed"},
                      {{"RegOpenKeyExW"}, Throws, "Could not read registry value. RegOpenKeyEx: 0x"},
                      {{"RegQueryValueExW"}, Throws, "Could not read registry value. RegQueryValueEx: 0x"},
                      {{"RegCloseKey"}, Nothing, "", "behind RegQueryValueExW"}};

// By the beginning of the message, or the call, behind which the step begins. The first row that fits counts.
const std::map<std::string, Rows> Steps = {
    {"Initializing COM interface...", {{{"CoInitializeEx"}, Throws, "Failed to initialize COM interface"}}},
    {"AudioModulesUtils: DiscoverFwModules() starting...",
     {{{"CoCreateInstance"}, Throws, "Failed to initialize COM device interface! Result: 0x"},
      {{"IMMDeviceEnumerator::EnumAudioEndpoints"}, Throws, "EnumAudioEndpoints failed! Result: 0x"},
      {{"IMMDeviceCollection::GetCount"}, Throws, "GetCount() for devices list failed! Result: 0x"}}},
    {"****** NEXT DEVICE ******",
     {{{"IMMDeviceCollection::Item"}, Throws, "Failed to get device from collection! Result: 0x"},
      {{"IMMDevice::GetId"}, Throws, "Failed to get device id! Result: 0x"},
      {{"IMMDevice::OpenPropertyStore"}, Throws, "Failed to open device property store! Result: 0x"},
      {{"IPropertyStore::GetValue"}, Throws, "Failed to read device GUID! Result: 0x"},
      {{"CLSIDFromString"}, Throws, "Failed to convert device GUID! Result: 0x"},
      {{"IMMDevice::QueryInterface"}, Throws, "Endpoint interface query failed! Result: 0x"},
      {{"IMMEndpoint::GetDataFlow"}, Throws, "GetDataFlow failed! Result: 0x"},
      {{"IMMDevice::Activate"}, Throws, "Device activation failed! Result: 0x"},
      {{"IDeviceTopology::GetConnector"}, Throws, "GetConnector failed! Result: 0x"}}},
    {"*** NEXT CONNECTOR ***",
     {{{"IConnector::GetConnectorIdConnectedTo", "IConnector::GetDeviceIdConnectedTo", "IPart::Activate"}, Nothing},
      {{}, LosesModules, "", "espeakertopo"},  // where another way to a pin may be tried
      {{"IConnector::IsConnected", "IConnector::GetType", "IConnector::GetConnectedTo", "IConnector::QueryInterface",
        "IPart::EnumPartsIncoming", "IPart::EnumPartsOutgoing", "IPartsList::GetCount", "IPartsList::GetPart",
        "IPart::GetPartType", "IPart::GetLocalId", "IAudioInputSelector::SetSelection", "IPart::QueryInterface"},
       SkipsEndpoint}}},
    {"Trying to read offload pin id...",
     {{{"IPart::GetLocalId"}, Nothing, "", "espeakertopo"},  // which has no audio engine
      {{}, LosesModules, "", "espeakertopo"},
      {{"IPart::GetLocalId", "IKsControl::KsProperty"}, LosesModules},
      {{"IPart::GetTopologyObject", "IDeviceTopology::GetDeviceId", "IMMDeviceEnumerator::GetDevice",
        "IMMDevice::Activate"},
       SkipsEndpoint}}},
    {"Found a Software_IO connector for current device",
     {{{"IConnector::QueryInterface", "IPart::GetTopologyObject", "IDeviceTopology::GetConnectorCount"},
       SkipsEndpoint}}},
    {"IDeviceTopology::GetConnectorCount",
     {{{"IDeviceTopology::GetDeviceId", "IMMDeviceEnumerator::GetDevice", "IMMDevice::Activate"}, SkipsEndpoint},
      {{}, Nothing, "", "espeaker"},  // whose pin is known: the scan finds nothing
      {{}, LosesModules, "", "connector 0:"},
      {{}, Nothing}}},
    {"Using pin id:", {{{"IKsControl::KsProperty"}, SkipsPin}}},
    {"Calling GetAudioEndpoints() for",
     {{{"CoCreateInstance"}, Throws, "CoCreateInstance() failed with status: 0x"},
      {{"IMMDeviceEnumerator::EnumAudioEndpoints"}, Throws, "EnumAudioEndpoints() failed with status: "},
      {{"IMMDeviceCollection::GetCount"}, Throws, "pCollection->GetCount() failed with status: "},
      {{"IMMDeviceCollection::Item"}, Throws, "pCollection->Item() failed with status: "},
      {{"IMMDevice::GetId"}, Throws, "pEndpoint->GetId() failed with status: "},
      {{"IMMDevice::OpenPropertyStore"}, Throws, "pEndpoint->OpenPropertyStore() failed with status: "},
      {{"IPropertyStore::GetValue"}, Throws, "pProps->GetValue() failed with status: "},
      {{"CLSIDFromString"}, Throws, "Call to CLSIDFromString() API failed with error code: 0x"},
      {{"RegOpenKeyW"}, Throws, "Unable to open registry key"},
      {{"RegQueryInfoKeyW"}, Unlists},
      {{"RegEnumKeyExW"}, Unlists, "", "active endpoint"},
      {{"RegEnumKeyExW"}, Nothing},
      {{"RegCloseKey"}, Throws, "Unable to close registry key"}}},
    {"[REG_SZ] Registry key value name: {d04e05a6", {{{"CLSIDFromString"}, Unlists}}},
    {"[REG_SZ] Registry key value name: {bac22de4",
     {{{"CLSIDFromString"}, Throws, "Call to CLSIDFromString() API failed with error code: 0x"}}},
    {"Found Orvex SPATIALF FW modules count:", {{{"VerifyVersionInfoW"}, Older}}}};

// A call of the whole run, in which nothing fails.
struct Place {
    CallRecord call;
    unsigned occurrence = 0;
    std::string step;
    std::string subject;     // what the call is made on, and with what
    std::size_t logged = 0;  // length of the log before it

    void Begin(const std::string& text)
    {
        for (const auto& [beginning, rows] : Steps)
            if (text.starts_with(beginning))
                step = beginning;
    }

    // Null: the tables do not tell.
    [[nodiscard]] const Row* Outcome() const
    {
        for (const Rows* const rows : {&AnyStep, &Steps.at(step)})
            for (const Row& row : *rows)
                if ((row.calls.empty() || row.calls.contains(call.call)) &&
                    subject.find(row.subject) != std::string::npos)
                    return &row;
        return nullptr;
    }
};

std::vector<Place> PlacesIn(const std::vector<rehearsal::Event>& events)
{
    std::vector<Place> places;
    std::map<std::string, unsigned> made;
    std::string connector;  // that is scanned
    Place at;
    for (auto event = events.begin(); event != events.end(); ++event) {
        if (const auto* const message = std::get_if<rehearsal::LogMessage>(&*event)) {
            at.Begin(TextOf(*message));
            at.logged += TextOf(*message).size();
            continue;
        }
        const std::string previous = at.call.call;
        at.call = std::get<CallRecord>(*event);
        const std::string& name = at.call.call;
        at.occurrence = ++made[name];
        if (name == "IDeviceTopology::GetConnector")
            connector = at.call.arguments;
        at.subject = "connector " + connector + ": " + at.call.object + " " + at.call.arguments;
        if (name == "RegCloseKey")
            at.subject = "behind " + previous;
        // Its device path is read next.
        if (name == "RegEnumKeyExW" && std::get<CallRecord>(event[2]).call == "StringFromCLSID")
            at.subject = "active endpoint";
        places.push_back(at);
        at.Begin(name);
    }
    return places;
}

// 0 if the text does not hold it.
int NumberBehind(const std::string& label, const std::string& text)
{
    const auto found = text.find(label);
    return found == std::string::npos ? 0 : std::stoi(text.substr(found + label.size()));
}

int FwModules(const Rehearsed& run) { return NumberBehind("FW audio module(s) count: ", run.log); }
int ApoModules(const Rehearsed& run) { return NumberBehind("APO audio module(s) count: ", run.log); }

std::string Discovery(const std::string& log) { return log.substr(0, log.find("Discovered audio modules:")); }

class FaultSweep : public testing::Test {
protected:
    FaultSweep()
    {
        MachineDescription withoutFirmware = ExampleMachine();
        for (machine::AdapterDevice& device : withoutFirmware.devices)
            device.filter.reset();
        onlyApo = Rehearse(withoutFirmware).after;
        MachineDescription withoutApo = ExampleMachine();
        for (machine::Endpoint& endpoint : withoutApo.endpoints)
            endpoint.fxProperties.reset();
        onlyFirmware = Rehearse(withoutApo).after;
    }

    // The run completes and goes on, at the latest with the next endpoint.
    void ExpectCompletion(const Place& at, const Rehearsed& run, Effect effect)
    {
        const std::size_t end = std::min({whole.log.find("****** NEXT DEVICE ******", at.logged),
                                          whole.log.find("AudioModulesUtils: ", at.logged), whole.log.size()});
        const std::size_t next = effect == SkipsPin ? std::min(end, whole.log.find("Using pin id:", at.logged)) : end;
        const std::string rest = Discovery(whole.log.substr(next));
        EXPECT_EQ(run.failure, "");
        EXPECT_TRUE(Discovery(run.log).ends_with(rest));
        if (effect == SkipsEndpoint || effect == SkipsPin) {
            EXPECT_EQ(Discovery(run.log).size(), at.logged + rest.size());
        }

        const bool loses = effect == SkipsEndpoint || effect == SkipsPin || effect == LosesModules;
        const std::string ended = loses ? whole.log.substr(at.logged, end - at.logged) : "";
        const int lost = NumberBehind("Modules count:", ended);
        EXPECT_EQ(FwModules(run), FwModules(whole) - lost);
        EXPECT_EQ(ApoModules(run) < ApoModules(whole), effect == Unlists);
        if (effect == Unlists)
            EXPECT_TRUE(run.after == whole.after || run.after == onlyFirmware);
        else
            EXPECT_EQ(run.after, effect == Older ? onlyFirmware : lost == 3 ? onlyApo : whole.after);
    }

    const Rehearsed whole = Rehearse(ExampleMachine());
    Files onlyApo;
    Files onlyFirmware;
};

TEST_F(FaultSweep, EveryFailedCallComesToWhatItMust)
{
    ASSERT_EQ(FwModules(whole), 4);
    ASSERT_EQ(std::set({whole.before, whole.after, onlyApo, onlyFirmware}).size(), 4u);
    for (const Place& at : PlacesIn(whole.events)) {
        SCOPED_TRACE(at.call.call + ", " + at.subject + ", behind " + at.step);
        const Row* const row = at.Outcome();
        ASSERT_NE(row, nullptr);
        const machine::PlatformCall& call = *machine::FindPlatformCall(at.call.call);
        const bool hresult = call.result == machine::ResultKind::HResult;
        const Rehearsed run =
            RehearseWith({at.call.call, at.occurrence, hresult ? LONG{E_FAIL} : LONG{ERROR_ACCESS_DENIED}});
        EXPECT_EQ(run.log.substr(0, at.logged), whole.log.substr(0, at.logged));
        const bool failsAnyway = hresult && call.IsFailure(at.call.result);
        if (failsAnyway || row->effect != Throws) {
            ExpectCompletion(at, run, failsAnyway ? Nothing : row->effect);
            continue;
        }
        const bool withCode = row->message.ends_with("0x") || row->message.ends_with(" ");
        EXPECT_EQ(run.failure, row->message + (!withCode ? "" : hresult ? "80004005" : "5"));
        EXPECT_EQ(run.log.size(), at.logged);
        EXPECT_EQ(run.after, whole.before);
    }
}

TEST_F(FaultSweep, AnotherSuccessCodeChangesNothing)
{
    std::set<std::string> calls;
    for (const Place& at : PlacesIn(whole.events))
        if (machine::FindPlatformCall(at.call.call)->result == machine::ResultKind::HResult)
            calls.insert(at.call.call);
    EXPECT_GT(calls.size(), 25u);
    for (const std::string& call : calls) {
        SCOPED_TRACE(call);
        const Rehearsed run = RehearseWith({call, {}, S_FALSE});
        EXPECT_EQ(run.failure, "");
        EXPECT_EQ(run.log, whole.log);
        EXPECT_EQ(run.after, whole.after);
    }
}

}  // namespace
