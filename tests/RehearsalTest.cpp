// A rehearsal tells what the run then does, changes nobody's file and leaves nothing behind.
#include "rehearsal/Rehearsal.h"

#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"
#include "support/Scratch.h"
#include "support/TemporaryRoot.h"
#include "support/UnwritableFile.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

machine::MachineDescription ExampleMachine()
{
    return machine::ReadMachine(QOVXML_EXAMPLES "/machines/laptop-spatialf.json");
}

// None where there is no file. By narrow path, as the library opens it.
std::optional<std::string> BytesOf(const std::string& path)
{
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str().empty() ? std::nullopt : std::optional(bytes.str());
}

class RehearsalTest : public testing::Test {
protected:
    RehearsalTest()
    {
        for (const auto& [path, example] : {std::pair(files_.ConfigurationFile, "QovConfiguration.xml"),
                                            {files_.SettingsFile, "QovSettings.xml"},
                                            {files_.ApoPipelinesDefinitionFile, "ApoPipelinesDefinition.xml"}})
            std::ofstream(path, std::ios::binary) << ReadBytes(QOVXML_EXAMPLES "/xml/" + std::string(example));
    }

    using ThreeFiles = std::array<std::optional<std::string>, 3>;
    ThreeFiles Originals() const
    {
        return {BytesOf(files_.ConfigurationFile), BytesOf(files_.SettingsFile),
                BytesOf(files_.ApoPipelinesDefinitionFile)};
    }

    // What the library itself does with the files.
    struct Run {
        std::string message;
        RecordingLogger logger;
        ThreeFiles files;
    };
    Run RunForReal()
    {
        Run run;
        const simulation::SimulatedMachine machine(ExampleMachine());
        run.message = MessageOf([&] { QovXml::ConfigureQovXmls(files_, run.logger); });
        run.files = Originals();
        return run;
    }

    void ExpectRehearsedAsRun()
    {
        const ThreeFiles before = Originals();
        const rehearsal::Outcome outcome = rehearsal::Rehearse(ExampleMachine(), files_);
        EXPECT_EQ(Originals(), before);
        const Run run = RunForReal();
        EXPECT_EQ(outcome.failure.value_or("(nothing thrown)"), run.message);
        std::vector<std::pair<LogLevel, std::wstring>> messages;
        for (const rehearsal::LogMessage& message : rehearsal::Log(outcome))
            messages.emplace_back(message.level, message.text);
        EXPECT_EQ(messages, run.logger.messages);
        for (std::size_t index = 0; index < before.size(); ++index) {
            EXPECT_EQ(outcome.files[index].before, before[index]);
            EXPECT_EQ(outcome.files[index].after, run.files[index]);
        }
    }

    ScratchFolder scratch_;
    const QovXml::Config files_{scratch_.Path("my configuration.xml"),
                                scratch_.Path("Einstellungen f\xc3\xbcr A&B.xml"), scratch_.Path("pipelines.xml")};
};

TEST_F(RehearsalTest, TellsWhatTheRunThenDoes) { ExpectRehearsedAsRun(); }

TEST_F(RehearsalTest, TellsThatAFileIsMissing)
{
    std::remove(files_.SettingsFile.c_str());
    ExpectRehearsedAsRun();
}

TEST_F(RehearsalTest, TellsThatAFileIsAFolder)
{
    fs::remove(files_.ApoPipelinesDefinitionFile);
    fs::create_directory(files_.ApoPipelinesDefinitionFile);
    ExpectRehearsedAsRun();
    EXPECT_TRUE(fs::is_directory(files_.ApoPipelinesDefinitionFile));
}

TEST_F(RehearsalTest, OnlyReadsTheOriginals)
{
    rehearsal::Outcome outcome;
    const ThreeFiles before = Originals();
    {
        const UnwritableFile configuration(files_.ConfigurationFile);
        const UnwritableFile pipelines(files_.ApoPipelinesDefinitionFile);
        outcome = rehearsal::Rehearse(ExampleMachine(), files_);
    }
    EXPECT_EQ(Originals(), before);
    const ThreeFiles after = RunForReal().files;
    for (std::size_t index = 0; index < after.size(); ++index)
        EXPECT_EQ(outcome.files[index].after, after[index]);
}

TEST_F(RehearsalTest, TellsMessagesAndCallsInTheirOrder)
{
    machine::MachineDescription machine = ExampleMachine();
    machine.faults = {{"IMMDevice::OpenPropertyStore", 2, E_FAIL}, {"IMMDevice::GetId", 3, E_FAIL}};
    const rehearsal::Outcome outcome = rehearsal::Rehearse(machine, files_);
    std::vector<std::string> methods;  // and where the messages are
    for (const rehearsal::Event& event : outcome.events) {
        const auto* const call = std::get_if<simulation::CallRecord>(&event);
        if (call == nullptr)
            methods.emplace_back("(message)");
        else if (call->call.find("::") != std::string::npos)
            methods.push_back(call->call + (call->result == E_FAIL ? " fails" : ""));
    }
    const std::vector<std::string> last = {"(message)", "IMMDeviceCollection::Item", "IMMDevice::GetId", "(message)",
                                           "IMMDevice::OpenPropertyStore fails"};
    ASSERT_GT(methods.size(), last.size());
    EXPECT_EQ(std::vector(methods.end() - 5, methods.end()), last);
    ASSERT_EQ(outcome.unusedFaults.size(), 1u);
    EXPECT_EQ(outcome.unusedFaults.front().call, "IMMDevice::GetId");
}

TEST_F(RehearsalTest, LeavesNothingBehind)
{
    const fs::path folder = scratch_.Folder() / "temporary files";
    const TemporaryRoot root(folder);
    const std::string message = MessageOf([&] { rehearsal::Rehearse(ExampleMachine(), files_); });
    EXPECT_TRUE(message.starts_with("There is no temporary folder: ")) << message;
    fs::create_directory(folder);

    rehearsal::Rehearse(ExampleMachine(), files_);
    EXPECT_TRUE(fs::is_empty(folder));
    {
        const simulation::SimulatedMachine another(ExampleMachine());
        EXPECT_EQ(MessageOf([&] { rehearsal::Rehearse(ExampleMachine(), files_); }),
                  "This process sees a simulated machine already");
        EXPECT_TRUE(fs::is_empty(folder));
    }
    fs::remove(files_.ConfigurationFile);
    EXPECT_TRUE(rehearsal::Rehearse(ExampleMachine(), files_).failure);
    EXPECT_TRUE(fs::is_empty(folder));
}

}  // namespace
