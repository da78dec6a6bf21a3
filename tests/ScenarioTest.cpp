// Whole runs as data: every folder of tests/scenarios/ is a machine, the three files before, and the files, the log and
// the message after. They go through the public face alone.
#include "QovXml.h"
#include "machine/MachineJson.h"
#include "machine/Utf16.h"
#include "simulation/SimulatedMachine.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace fs = std::filesystem;

namespace {

constexpr const char* FileNames[] = {"configuration.xml", "settings.xml", "pipelines.xml"};

std::vector<fs::path> Scenarios()
{
    std::vector<fs::path> folders;
    for (const auto& entry : fs::directory_iterator(QOVXML_SCENARIOS))
        folders.push_back(entry.path());
    std::sort(folders.begin(), folders.end());
    return folders;
}

// One message of the log as the scenarios write it.
std::string Expected(const nlohmann::json& entry)
{
    if (entry.is_object())
        return "[warning] " + entry.at("warning").get<std::string>();
    if (entry.is_string())
        return entry.get<std::string>();
    std::string joined;
    for (const auto& line : entry)
        joined += line.get<std::string>() + "\n";
    joined.pop_back();
    return joined;
}

std::vector<std::string> ExpectedLog(const nlohmann::json& log)
{
    std::vector<std::string> messages;
    std::transform(log.begin(), log.end(), std::back_inserter(messages), Expected);
    return messages;
}

std::vector<std::string> ActualLog(const RecordingLogger& logger)
{
    std::vector<std::string> messages;
    for (const auto& [level, message] : logger.messages)
        messages.push_back((level == LogLevel::Warning ? "[warning] " : "") + machine::Utf16ToUtf8(message));
    return messages;
}

// The log line by line, so that a difference shows as the lines that differ.
std::string Lines(const std::vector<std::string>& messages)
{
    std::string lines;
    for (const std::string& message : messages)
        lines += "> " + message + "\n";
    return lines;
}

class WorkingFolder {
public:
    explicit WorkingFolder(const fs::path& folder) : before_(fs::current_path()) { fs::current_path(folder); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder() { fs::current_path(before_); }

private:
    fs::path before_;
};

class ScenarioTest : public testing::TestWithParam<fs::path> {};

TEST_P(ScenarioTest, RunsAsDescribed)
{
    const fs::path& scenario = GetParam();
    const auto expected = nlohmann::json::parse(ReadBytes(scenario / "scenario.json"));
    ScratchFolder scratch;
    if (fs::exists(scenario / "before"))
        fs::copy(scenario / "before", scratch.Folder());
    const WorkingFolder working(scratch.Folder());

    RecordingLogger logger;
    std::string message;
    {
        std::vector<std::unique_ptr<UnwritableFile>> unwritable;
        for (const auto& name : expected.value("unwritable", nlohmann::json::array()))
            unwritable.push_back(std::make_unique<UnwritableFile>(name.get<std::string>()));
        const simulation::SimulatedMachine machine(machine::ReadMachine((scenario / "machine.json").string()));
        message = MessageOf([&] { QovXml::ConfigureQovXmls({FileNames[0], FileNames[1], FileNames[2]}, logger); });
    }

    EXPECT_EQ(message, expected.value("throws", "(nothing thrown)"));
    EXPECT_EQ(Lines(ActualLog(logger)), Lines(ExpectedLog(expected.at("log"))));
    for (const char* const name : FileNames) {
        SCOPED_TRACE(name);
        const fs::path after = scenario / "after" / name;
        ASSERT_EQ(fs::exists(name), fs::exists(after));
        if (fs::exists(after)) {
            EXPECT_EQ(ReadBytes(name), ReadBytes(after));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Whole, ScenarioTest, testing::ValuesIn(Scenarios()), [](const auto& scenario) {
    std::string name = scenario.param.filename().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
