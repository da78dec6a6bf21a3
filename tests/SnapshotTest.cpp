// A snapshot of a machine gives the same run as the machine itself, and is the same as a snapshot of what it describes.
#include "snapshot/Snapshot.h"

#include "ScenarioCases.h"
#include "machine/MachineJson.h"
#include "machine/PlatformCalls.h"
#include "machine/Utf16.h"
#include "rehearsal/Rehearsal.h"
#include "simulation/SimulatedMachine.h"
#include "support/Holdings.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <set>
#include <tuple>

namespace fs = std::filesystem;

namespace {

using machine::MachineDescription;

MachineDescription Example(const std::string& name)
{
    return machine::ReadMachine(QOVXML_EXAMPLES "/machines/" + name + ".json");
}

QovXml::Config ExampleFiles()
{
    const std::string xml = QOVXML_EXAMPLES "/xml/";
    return {xml + "QovConfiguration.xml", xml + "QovSettings.xml", xml + "ApoPipelinesDefinition.xml"};
}

// As text, which is read back to be played.
std::string SnapshotOf(const MachineDescription& machine)
{
    const simulation::SimulatedMachine simulated(machine);
    const auto held = CurrentHoldings();
    std::string text = machine::WriteMachine(snapshot::TakeSnapshot());
    EXPECT_EQ(CurrentHoldings(), held);
    for (const simulation::CallRecord& call : simulated.Calls())
        EXPECT_EQ(call.call.find("SetSelection"), std::string::npos) << "a snapshot selects nothing";
    return text;
}

// What was thrown, what was logged, and what the files are then.
std::vector<std::string> Run(const MachineDescription& machine, const QovXml::Config& files)
{
    const rehearsal::Outcome outcome = rehearsal::Rehearse(machine, files);
    std::vector<std::string> run = {outcome.failure.value_or("(nothing thrown)")};
    for (const rehearsal::FileOutcome& file : outcome.files)
        run.push_back(file.after.value_or("(no file)"));
    for (const rehearsal::LogMessage& message : rehearsal::Log(outcome))
        run.push_back((message.level == LogLevel::Warning ? "warning: " : "") + machine::Utf16ToUtf8(message.text));
    return run;
}

void ExpectSameRun(const MachineDescription& machine, const MachineDescription& other, const QovXml::Config& files)
{
    const auto run = Run(machine, files), otherRun = Run(other, files);
    const auto [left, right] = std::mismatch(run.begin(), run.end(), otherRun.begin(), otherRun.end());
    EXPECT_EQ(left == run.end() ? "(end)" : *left, right == otherRun.end() ? "(end)" : *right)
        << "entry " << left - run.begin();
}

// Whether the fault belongs to an object and is there whenever that is looked at; a snapshot selects nothing.
bool IsAsked(const machine::Fault& fault)
{
    return !fault.object.empty() && !fault.occurrence && fault.call.find("SetSelection") == std::string::npos;
}

// Gives the snapshot.
MachineDescription ExpectSnapshotReplays(const MachineDescription& machine, const QovXml::Config& files)
{
    const std::string text = SnapshotOf(machine);
    MachineDescription snapshot = machine::ParseMachine(text, "snapshot");
    ExpectSameRun(machine, snapshot, files);
    if (std::all_of(machine.faults.begin(), machine.faults.end(), IsAsked)) {
        EXPECT_EQ(SnapshotOf(snapshot), text);
    }
    return snapshot;
}

class ReplayTest : public testing::Test {
public:
    explicit ReplayTest(ScenarioCase scenario) : scenario_(std::move(scenario)) {}

    void TestBody() override
    {
        const ScratchFolder scratch;
        std::array<std::string, 3> paths;
        for (std::size_t index = 0; index < ScenarioFiles.size(); ++index) {
            paths[index] = scratch.Path(ScenarioFiles[index]);
            if (scenario_.before[index])
                WriteBytes(paths[index], *scenario_.before[index]);
        }
        const MachineDescription machine = machine::ParseMachine(scenario_.machine, scenario_.name);
        EXPECT_TRUE(ExpectSnapshotReplays(machine, {paths[0], paths[1], paths[2]}).notes.empty());
    }

private:
    ScenarioCase scenario_;
};

void Register(const ScenarioCase& scenario)
{
    testing::RegisterTest(scenario.suite.c_str(), scenario.name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [scenario]() -> ReplayTest* { return new ReplayTest(scenario); });
}

// Every machine of the scenarios, and the examples with their files.
[[maybe_unused]] const bool registered = [] {
    for (const ScenarioCase& scenario : ReadScenarioCases(QOVXML_SCENARIOS)) {
        const auto faults = machine::ParseMachine(scenario.machine, scenario.name).faults;
        if (std::all_of(faults.begin(), faults.end(), IsAsked))
            Register(scenario);
    }
    for (const auto& entry : fs::directory_iterator(QOVXML_EXAMPLES "/machines")) {
        ScenarioCase example;
        example.machine = ReadBytes(entry.path());
        example.name = entry.path().stem().string();
        std::replace(example.name.begin(), example.name.end(), '-', '_');
        example.suite = example.name.starts_with("windows8") ? "Windows8/Examples" : "Windows10/Examples";
        const QovXml::Config files = ExampleFiles();
        for (const auto& [index, path] : {std::pair(0, files.ConfigurationFile), std::pair(1, files.SettingsFile),
                                          std::pair(2, files.ApoPipelinesDefinitionFile)})
            example.before[static_cast<std::size_t>(index)] = ReadBytes(path);
        Register(example);
    }
    return true;
}();

constexpr const wchar_t* DevicePath = L"{233164c8-1b2c-4c7d-bc68-b671687a2567},1";

// Every call of a run fails, for each object and arguments that it is made with. What turns texts into GUIDs and back
// is no question to the machine.
void SweepFaults(bool ofFunctions)
{
    MachineDescription whole = Example("laptop-spatialf");
    for (machine::Endpoint& endpoint : whole.endpoints)  // no more values than a run asks for
        if (endpoint.properties)
            std::erase_if(*endpoint.properties, [](const auto& value) { return value.name != DevicePath; });
    std::set<std::tuple<std::string, std::string, std::string>> calls;
    for (const rehearsal::Event& event : rehearsal::Rehearse(whole, ExampleFiles()).events)
        if (const auto* const call = std::get_if<simulation::CallRecord>(&event))
            calls.emplace(call->call, call->object, call->arguments);
    for (const auto& [call, object, arguments] : calls) {
        SCOPED_TRACE(call + " " + object + " " + arguments);
        const machine::PlatformCall& kind = *machine::FindPlatformCall(call);
        const LONG result = kind.result == machine::ResultKind::HResult ? LONG{E_FAIL} : LONG{ERROR_ACCESS_DENIED};
        if (kind.IsFunction() != ofFunctions || call.find("SetSelection") != std::string::npos ||
            call.find("CLSID") != std::string::npos)
            continue;
        MachineDescription machine = whole;
        machine.faults = {{call, {}, result, object, arguments}};
        ExpectSnapshotReplays(machine, ExampleFiles());
    }
}

using Values = std::optional<std::vector<machine::RegistryValue>>;

Values Sorted(Values values)
{
    if (values)
        std::sort(values->begin(), values->end(),
                  [](const auto& left, const auto& right) { return left.name < right.name; });
    return values;
}

// Machines that answer oddly, and what the notes say of them.
TEST(SnapshotTest, KeepsWhatItCanOfOddMachines)
{
    using Endpoints = std::vector<machine::Endpoint>;
    const struct {
        const char* name;
        std::function<void(MachineDescription&)> make;
        std::vector<std::string> notes;  // each holds this
        bool replays = true;
    } rows[] = {
        {"a ring of parts",
         [](auto& machine) {
             for (machine::AdapterDevice& device : machine.devices)
                 for (machine::PartDescription& part : device.topology.parts)
                     part.incoming = part.outgoing = {part.localId, part.localId};
         },
         {}},
        {"a ring of devices",
         [](auto& machine) {
             for (machine::Endpoint& endpoint : machine.endpoints)
                 for (machine::PartDescription& part : endpoint.topology.parts)
                     part.connectedTo = {machine.endpoints.front().deviceId, part.localId};
             machine.endpoints.front().topology.parts.front().incoming.emplace();
         },
         {}},
        {"registry values of any kind",
         [](auto& machine) {
             auto& values = *machine.endpoints.back().properties;
             values = {
                 {L"", REG_NONE, {}},           {L"a", REG_LINK, {1}},        {L"B", 0x1234, {1, 0, 0, 0xd8}},
                 {L"c", REG_DWORD, {1}},        {L"d", REG_SZ, {0, 0xd8, 0}}, {L"e", REG_SZ, {'e', 0, 0, 0, 0, 0}},
                 {L"\u00e4", REG_QWORD, {1, 2}}};
         },
         {}},
        {"ids that lead to no key, or to the same",
         [](auto& machine) {
             Endpoints& endpoints = machine.endpoints;
             endpoints[0].deviceId = L"first";
             endpoints[1].guidPropertyText = L"no GUID";
             endpoints[2].guidPropertyText = machine::UpperGuidText(endpoints[0].guid);
             endpoints[2].registered = false;
             endpoints[2].properties.reset();
             endpoints[2].fxProperties.reset();
             machine.furtherRenderKeys = {L"{not a GUID}", L"zz"};
         },
         {}},
        {"the list of all endpoints is refused",
         [](auto& machine) {
             std::erase_if(machine.endpoints,
                           [](const auto& endpoint) { return endpoint.state != DEVICE_STATE_ACTIVE; });

             machine.faults = {{"IMMDeviceEnumerator::EnumAudioEndpoints", {}, E_FAIL, "", "2, 15"}};
         },
         {}},
        {"what fails at first only, and what works at first only",
         [](auto& machine) {
             const std::string id = machine::Utf16ToUtf8(machine.endpoints.back().deviceId);
             machine.faults = {{"IMMDevice::GetState", 1, E_FAIL, id}, {"IMMDevice::OpenPropertyStore", 2, E_FAIL, id}};
         },
         {"GetState of", "different", "OpenPropertyStore of", "says that it is in state"},
         false},
        {"texts that are no UTF-16",
         [](auto& machine) {
             machine.endpoints[0].friendlyName = L"a\xd83c";
             machine.endpoints[0].properties->push_back({L"\xdfa7", REG_SZ, {}});
             machine.endpoints[0].properties->push_back({L"\xdfa8", REG_SZ, {}});
             machine.furtherCaptureKeys = {L"\xdc00"};
         },
         {"\"a\xef\xbf\xbd\"", "\"\xef\xbf\xbd\"", "is left out"},
         false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        MachineDescription machine = Example("laptop-spatialf");
        row.make(machine);
        const MachineDescription snapshot = row.replays ? ExpectSnapshotReplays(machine, ExampleFiles())
                                                        : machine::ParseMachine(SnapshotOf(machine), "");
        ASSERT_EQ(snapshot.endpoints.size(), machine.endpoints.size());
        for (std::size_t index = 0; row.replays && index < machine.endpoints.size(); ++index) {
            const machine::Endpoint &kept = snapshot.endpoints[index], &endpoint = machine.endpoints[index];
            EXPECT_EQ(Sorted(kept.properties), Sorted(endpoint.properties));
            EXPECT_EQ(Sorted(kept.fxProperties), Sorted(endpoint.fxProperties));
        }
        std::string notes;
        for (const std::wstring& note : snapshot.notes)
            notes += machine::Utf16ToUtf8(note) + "\n";
        for (const std::string& note : row.notes)
            EXPECT_NE(notes.find(note), std::string::npos) << notes;
        EXPECT_EQ(notes.empty(), row.notes.empty()) << notes;
    }
}

TEST(SnapshotTest, FailingMethodsFailAgain) { SweepFaults(false); }

TEST(SnapshotStandInTest, FailingFunctionsFailAgain) { SweepFaults(true); }

}  // namespace
