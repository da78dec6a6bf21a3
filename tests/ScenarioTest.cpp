// The whole runs of tests/scenarios/, through the public face alone.
#include "LogPattern.h"
#include "ScenarioCases.h"
#include "machine/MachineJson.h"
#include "machine/Utf16.h"
#include "rehearsal/Rehearsal.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <utility>

namespace fs = std::filesystem;

namespace {

// Messages name the files as they are given: without the folder of a test.
class WorkingFolder {
public:
    explicit WorkingFolder(const fs::path& folder) : before_(fs::current_path()) { fs::current_path(folder); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder() { fs::current_path(before_); }

private:
    fs::path before_;
};

std::string FileName(std::size_t index) { return std::string(ScenarioFiles[index]) + ".xml"; }

std::vector<std::string> LogOf(const rehearsal::Outcome& outcome)
{
    std::vector<std::string> log;
    for (const rehearsal::Event& event : outcome.events)
        if (const auto* const message = std::get_if<rehearsal::LogMessage>(&event))
            log.push_back((message->level == LogLevel::Warning ? "[warning] " : "") +
                          machine::Utf16ToUtf8(message->text));
    return log;
}

std::vector<std::string> CallsOf(const rehearsal::Outcome& outcome)
{
    std::vector<std::string> calls;
    for (const rehearsal::Event& event : outcome.events)
        if (const auto* const call = std::get_if<simulation::CallRecord>(&event))
            calls.push_back(call->call + " " + call->object + " " + call->arguments);
    return calls;
}

class ScenarioTest : public testing::Test {
public:
    explicit ScenarioTest(ScenarioCase scenario) : scenario_(std::move(scenario)) {}

    void TestBody() override
    {
        const ScratchFolder scratch;
        const WorkingFolder working(scratch.Folder());
        for (std::size_t index = 0; index < ScenarioFiles.size(); ++index)
            if (scenario_.before[index])
                WriteBytes(FileName(index), *scenario_.before[index]);

        errno = ERANGE;  // what an earlier failure left behind is none of the run's business
        const rehearsal::Outcome outcome =
            rehearsal::Rehearse(machine::ParseMachine(scenario_.machine, scenario_.suite + "." + scenario_.name),
                                {FileName(0), FileName(1), FileName(2)});

        EXPECT_TRUE(outcome.unusedFaults.empty()) << "a fault that no call met";
        EXPECT_EQ(outcome.failure.value_or("(nothing thrown)"), scenario_.failure);
        Compare("log", scenario_.log, LogOf(outcome));
        Compare("platform calls", scenario_.calls, CallsOf(outcome));
        for (std::size_t index = 0; index < ScenarioFiles.size(); ++index)
            EXPECT_EQ(outcome.files[index].after.value_or("(no file)"), scenario_.after[index].value_or("(no file)"))
                << FileName(index);
    }

private:
    static void Compare(const char* what, const std::vector<std::string>& expected,
                        const std::vector<std::string>& actual)
    {
        if (const std::string difference = LogDifference(expected, actual); !difference.empty())
            ADD_FAILURE() << what << ": " << difference;
    }

    ScenarioCase scenario_;
};

// Names like "Windows10/Validation.two_mfx": where the case can run, the file that holds it, and the case.
[[maybe_unused]] const bool registered = [] {
    for (const ScenarioCase& scenario : ReadScenarioCases(QOVXML_SCENARIOS))
        testing::RegisterTest(scenario.suite.c_str(), scenario.name.c_str(), nullptr, scenario.about.c_str(), __FILE__,
                              __LINE__, [scenario]() -> ScenarioTest* { return new ScenarioTest(scenario); });
    return true;
}();

}  // namespace
