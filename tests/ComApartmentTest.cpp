#include "MachineJson.h"
#include "QovXml.h"
#include "SimulatedMachine.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <algorithm>
#include <thread>

namespace {

using simulation::MachineDescription;

const std::vector<std::wstring> FirstLines = {L"QovXml: ConfigureQovXmls() starting...",
                                              L"Initializing COM interface..."};
const std::wstring LastLine = L"QovXml: ConfigureQovXmls() completed successfully";

// What a thread hears when it asks for a single-threaded apartment: S_OK when it is in no apartment, S_FALSE when it
// is in such a one, RPC_E_CHANGED_MODE when it is in the multithreaded one.
HRESULT ProbeApartment()
{
    const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (SUCCEEDED(result))
        CoUninitialize();
    return result;
}

struct Apartment {
    const char* name;
    std::optional<DWORD> joined;
    HRESULT probed;
};
constexpr Apartment Fresh{"fresh", {}, S_OK};
constexpr Apartment Multithreaded{"multithreaded", COINIT_MULTITHREADED, RPC_E_CHANGED_MODE};
constexpr Apartment SingleThreaded{"single-threaded", COINIT_APARTMENTTHREADED, S_FALSE};

struct Outcome {
    std::string message;
    std::vector<std::wstring> log;
    std::string configuration;
    std::ptrdiff_t calls = 0;  // of the platform, besides joining the apartment
};

// Runs on a thread of its own in that apartment, and checks that the thread is left as it was.
Outcome RunOn(const Apartment& apartment, const MachineDescription& description, const std::string& configuration)
{
    const ScratchFolder scratch;
    const QovXml::Config config{scratch.Path("configuration"), scratch.Path("settings"), scratch.Path("pipelines")};
    WriteBytes(config.ConfigurationFile, configuration);
    WriteBytes(config.SettingsFile, "");
    const simulation::SimulatedMachine machine(description);
    Outcome outcome;
    std::thread([&] {
        if (apartment.joined) {
            EXPECT_EQ(CoInitializeEx(nullptr, *apartment.joined), S_OK);
        }
        RecordingLogger logger;
        outcome.message = MessageOf([&] { QovXml::ConfigureQovXmls(config, logger); });
        outcome.log = logger.Texts();
        outcome.calls = std::count_if(machine.Calls().begin(), machine.Calls().end(),
                                      [](const auto& record) { return record.call != "CoInitializeEx"; });
        EXPECT_EQ(ProbeApartment(), apartment.probed);
        if (apartment.joined)
            CoUninitialize();
        EXPECT_EQ(ProbeApartment(), S_OK);
    }).join();
    outcome.configuration = ReadBytes(config.ConfigurationFile);
    return outcome;
}

TEST(ComApartmentTest, RunLeavesTheThreadAsItWas)
{
    MachineDescription discovery;
    discovery.furtherRenderKeys = {L"NotAGuid"};
    const MachineDescription validation = simulation::ReadMachine(QOVXML_EXAMPLES "/machines/refused-two-modes.json");
    const struct {
        MachineDescription machine;
        std::string before;
        std::string after;
        std::string message;  // how it begins
    } rows[] = {
        {{}, "<a/>\n", "<a/>\r\n", "(nothing thrown)"},
        {discovery, "<a/>\n", "<a/>\n", "Call to CLSIDFromString() API failed with error code: 0x"},
        {validation, "<a/>\n", "<a/>\n", "APO module installed in more than one mode"},
        {{}, "OrvexZan_Sfx_Apo\n", "OrvexZan_Sfx_Apo\n", "Section start tag \"<ParameterBlock\"not found"},
    };
    for (const Apartment& apartment : {Fresh, Multithreaded}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(apartment.name) + ", " + row.message);
            const auto [message, log, configuration, calls] = RunOn(apartment, row.machine, row.before);
            EXPECT_EQ(message.substr(0, row.message.size()), row.message);
            EXPECT_EQ(configuration, row.after);
            ASSERT_GT(log.size(), FirstLines.size());
            EXPECT_TRUE(std::equal(FirstLines.begin(), FirstLines.end(), log.begin()));
            const bool succeeds = &row == rows;
            EXPECT_EQ(std::count(log.begin(), log.end(), LastLine), succeeds ? 1 : 0);
            EXPECT_EQ(log.back() == LastLine, succeeds);
        }
    }
}

void ExpectRefusedJoin(const Apartment& apartment, const MachineDescription& machine)
{
    const auto [message, log, configuration, calls] = RunOn(apartment, machine, "<a/>\n");
    EXPECT_EQ(message, "Failed to initialize COM interface");
    EXPECT_EQ(log, FirstLines);
    EXPECT_EQ(calls, 0) << "something was done after it";
    EXPECT_EQ(configuration, "<a/>\n");
}

TEST(ComApartmentTest, RefusedJoinEndsTheRunAtOnce) { ExpectRefusedJoin(SingleThreaded, {}); }

TEST(ComApartmentStandInTest, AnyFailedJoinEndsTheRunAtOnce)
{
    MachineDescription refusing;
    refusing.faults = {{"CoInitializeEx", 2, E_OUTOFMEMORY}};  // the first is that of the thread itself
    ExpectRefusedJoin(Multithreaded, refusing);
}

TEST(QovXmlTest, AssignmentGivesItsLeftOperand)
{
    QovXml left;
    const QovXml right;
    EXPECT_EQ(&(left = right), &left);
}

}  // namespace
