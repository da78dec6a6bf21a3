// What a run logs and writes before it ends is shown by the scenarios.
#include "QovXml.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <thread>

namespace {

using machine::MachineDescription;

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

// Runs on a thread of its own in that apartment; checks what is thrown, and that the thread is left as it was.
void ExpectRun(const Apartment& apartment, const MachineDescription& description, const std::string& configuration,
               const std::string& message)
{
    SCOPED_TRACE(std::string(apartment.name) + ", " + message);
    const ScratchFolder scratch;
    const QovXml::Config config{scratch.Path("configuration"), scratch.Path("settings"), scratch.Path("pipelines")};
    WriteBytes(config.ConfigurationFile, configuration);
    WriteBytes(config.SettingsFile, "");
    const simulation::SimulatedMachine machine(description);
    std::thread([&] {
        if (apartment.joined) {
            EXPECT_EQ(CoInitializeEx(nullptr, *apartment.joined), S_OK);
        }
        RecordingLogger logger;
        EXPECT_EQ(MessageOf([&] { QovXml::ConfigureQovXmls(config, logger); }).substr(0, message.size()), message);
        EXPECT_EQ(ProbeApartment(), apartment.probed);
        if (apartment.joined)
            CoUninitialize();
        EXPECT_EQ(ProbeApartment(), S_OK);
    }).join();
}

TEST(ComApartmentTest, RunLeavesTheThreadAsItWas)
{
    MachineDescription discovery;
    discovery.furtherRenderKeys = {L"NotAGuid"};
    const MachineDescription validation = machine::ReadMachine(QOVXML_EXAMPLES "/machines/refused-two-modes.json");
    for (const Apartment& apartment : {Fresh, Multithreaded}) {
        ExpectRun(apartment, {}, "<a/>\n", "(nothing thrown)");
        ExpectRun(apartment, discovery, "<a/>\n", "Call to CLSIDFromString() API failed with error code: 0x");
        ExpectRun(apartment, validation, "<a/>\n", "APO module installed in more than one mode");
        ExpectRun(apartment, {}, "OrvexZan_Sfx_Apo\n", "Section start tag \"<ParameterBlock\"not found");
    }
    ExpectRun(SingleThreaded, {}, "<a/>\n", "Failed to initialize COM interface");
}

TEST(ComApartmentStandInTest, AnyFailedJoinEndsTheRun)
{
    MachineDescription refusing;
    refusing.faults = {{"CoInitializeEx", 2, E_OUTOFMEMORY}};  // the first is that of the thread itself
    ExpectRun(Multithreaded, refusing, "<a/>\n", "Failed to initialize COM interface");
}

TEST(QovXmlTest, AssignmentGivesItsLeftOperand)
{
    QovXml left;
    const QovXml right;
    EXPECT_EQ(&(left = right), &left);
}

}  // namespace
