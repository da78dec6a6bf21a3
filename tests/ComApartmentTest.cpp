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
constexpr const wchar_t* LastLine = L"QovXml: ConfigureQovXmls() completed successfully";

// What a thread learns that asks for a single-threaded apartment: S_OK when it is in no apartment, S_FALSE when it has
// one already, RPC_E_CHANGED_MODE in the multithreaded one.
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
    RecordingLogger logger;
    std::string configuration;
    std::vector<std::string> calls;  // those that the run makes
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
        const std::size_t before = machine.Calls().size();
        outcome.message = MessageOf([&] { QovXml::ConfigureQovXmls(config, outcome.logger); });
        for (std::size_t call = before; call < machine.Calls().size(); ++call)
            outcome.calls.push_back(machine.Calls()[call].call);
        EXPECT_EQ(ProbeApartment(), apartment.probed);
        if (apartment.joined) {
            CoUninitialize();
            EXPECT_EQ(ProbeApartment(), S_OK) << "the run has left a join of its own";
        }
    }).join();
    outcome.configuration = ReadBytes(config.ConfigurationFile);
    return outcome;
}

MachineDescription WithMfxApoTwice()
{
    MachineDescription description;
    for (const unsigned number : {1u, 2u}) {
        simulation::Endpoint endpoint;
        endpoint.guid = {number, 0, 0, {}};
        endpoint.deviceId = simulation::DefaultDeviceId(endpoint);
        endpoint.guidPropertyText = simulation::UpperGuidText(endpoint.guid);
        endpoint.fxProperties = {{L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},6", REG_SZ,
                                  simulation::TextData(L"{7BA4CEB1-0A15-4AE4-B090-461D48FB641C}")}};
        description.endpoints.push_back(endpoint);
    }
    return description;
}

TEST(ComApartmentTest, RunLeavesTheThreadAsItWas)
{
    MachineDescription odd;
    odd.furtherRenderKeys = {L"NotAGuid"};
    const struct {
        const char* name;
        MachineDescription machine;
        std::string configuration;
        std::string message;  // how it begins
    } rows[] = {
        {"success", {}, "<a/>\n", "(nothing thrown)"},
        {"discovery", odd, "<a/>\n", "Call to CLSIDFromString() API failed with error code: 0x"},
        {"validation", WithMfxApoTwice(), "<a/>\n", "Invalid number of installed Orvex ZAN APOs in LFX/MFX mode: 2"},
        {"editing", {}, "OrvexZan_Sfx_Apo\n", "Section start tag \"<ParameterBlock\"not found"},
    };
    for (const Apartment& apartment : {Fresh, Multithreaded}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(apartment.name) + ", " + row.name);
            const Outcome outcome = RunOn(apartment, row.machine, row.configuration);
            const bool succeeds = row.message == "(nothing thrown)";
            EXPECT_EQ(row.message, outcome.message.substr(0, row.message.size()));
            EXPECT_EQ(succeeds ? "<a/>\r\n" : row.configuration, outcome.configuration);

            const std::vector<std::wstring> texts = outcome.logger.Texts();
            ASSERT_GT(texts.size(), FirstLines.size());
            EXPECT_TRUE(std::equal(FirstLines.begin(), FirstLines.end(), texts.begin()));
            EXPECT_EQ(std::count(texts.begin(), texts.end(), LastLine), succeeds ? 1 : 0);
            EXPECT_EQ(texts.back() == LastLine, succeeds);
            for (const auto& [level, message] : outcome.logger.messages)
                EXPECT_EQ(level, LogLevel::Info);
        }
    }
}

TEST(ComApartmentTest, RefusedJoinEndsTheRunAtOnce)
{
    MachineDescription refusing;
    refusing.faults = {{"CoInitializeEx", 2, E_OUTOFMEMORY}};  // the first is the test's own
    const struct {
        Apartment apartment;
        MachineDescription machine;
    } rows[] = {{SingleThreaded, {}}, {Multithreaded, refusing}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.apartment.name);
        const Outcome outcome = RunOn(row.apartment, row.machine, "<a/>\n");
        EXPECT_EQ(outcome.message, "Failed to initialize COM interface");
        EXPECT_EQ(outcome.logger.Texts(), FirstLines);
        EXPECT_EQ(outcome.calls, std::vector<std::string>{"CoInitializeEx"});
        EXPECT_EQ(outcome.configuration, "<a/>\n");
    }
}

TEST(QovXmlTest, AssignmentGivesItsLeftOperand)
{
    QovXml left;
    const QovXml right;
    EXPECT_EQ(&(left = right), &left);
}

}  // namespace
