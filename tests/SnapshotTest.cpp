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

// Every call of a run fails, for each object and arguments that it is made with. What turns texts into GUIDs and back
// is no question to the machine.
void SweepFaults(bool ofFunctions)
{
    const MachineDescription whole = Example("laptop-spatialf");
    std::set<std::tuple<std::string, std::string, std::string>> calls;
    for (const rehearsal::Event& event : rehearsal::Rehearse(whole, ExampleFiles()).events)
        if (const auto* const call = std::get_if<simulation::CallRecord>(&event))
            calls.emplace(call->call, call->object, call->arguments);
    for (const auto& [call, object, arguments] : calls) {
        SCOPED_TRACE(call + " " + object + " " + arguments);
        const machine::PlatformCall& kind = *machine::FindPlatformCall(call);
        const LONG result = kind.result == machine::ResultKind::HResult ? LONG{E_FAIL} : LONG{ERROR_ACCESS_DENIED};
        MachineDescription machine = whole;
        machine.faults = {{call, {}, result, object, arguments}};
        if (kind.IsFunction() == ofFunctions && call.find("SetSelection") == std::string::npos &&
            call.find("CLSID") == std::string::npos)
            ExpectSnapshotReplays(machine, ExampleFiles());
    }
}

TEST(SnapshotTest, FailingMethodsFailAgain) { SweepFaults(false); }

TEST(SnapshotStandInTest, FailingFunctionsFailAgain) { SweepFaults(true); }

}  // namespace
