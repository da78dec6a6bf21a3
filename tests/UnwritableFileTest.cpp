// A file that cannot be written: nothing is reported, and the run goes on.
#include "QovXml.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"
#include "support/RecordingLogger.h"
#include "support/Scratch.h"
#include "support/UnwritableFile.h"

#include <gtest/gtest.h>

namespace {

class UnwritableFileTest : public testing::TestWithParam<int> {};

TEST_P(UnwritableFileTest, KeepsItsBytesWhileTheOthersAreWritten)
{
    constexpr const char* Names[] = {"configuration.xml", "settings.xml", "pipelines.xml"};
    const std::filesystem::path scenarios = QOVXML_SCENARIOS;
    const ScratchFolder scratch;
    for (const char* const name : Names)
        WriteBytes(scratch.Path(name), ReadBytes(scenarios / "files" / name));
    RecordingLogger logger;
    {
        const UnwritableFile unwritable(scratch.Path(Names[GetParam()]));
        const simulation::SimulatedMachine machine(
            machine::ParseMachine(ReadBytes(scenarios / "machines/plain.json"), "plain.json"));
        QovXml::ConfigureQovXmls({scratch.Path(Names[0]), scratch.Path(Names[1]), scratch.Path(Names[2])}, logger);
    }
    EXPECT_EQ(logger.Texts().back(), L"QovXml: ConfigureQovXmls() completed successfully");
    for (int index = 0; index < 3; ++index)
        EXPECT_EQ(ReadBytes(scratch.Path(Names[index])) == ReadBytes(scenarios / "files" / Names[index]),
                  index == GetParam())
            << Names[index];
}

INSTANTIATE_TEST_SUITE_P(Each, UnwritableFileTest, testing::Values(0, 1, 2));

}  // namespace
