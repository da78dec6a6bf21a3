// Repeats a run on the richest example machine with every single platform call failing in turn, and compares the
// outcome with what that failure must come to.
#include "QovXml.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"
#include "support/Failures.h"
#include "support/Holdings.h"
#include "support/RecordingLogger.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

using Files = std::vector<std::string>;

constexpr const char* FileNames[] = {"QovConfiguration.xml", "QovSettings.xml", "ApoPipelinesDefinition.xml"};

struct Outcome {
    std::string message;
    std::vector<std::wstring> log;
    Files files;
    std::vector<simulation::CallRecord> calls;

    // The report's count of a kind of modules; -1 where the run did not come to it.
    [[nodiscard]] int Modules(const std::wstring& kind) const
    {
        const std::wstring label = L"Discovered " + kind + L" audio module(s) count: ";
        for (const std::wstring& entry : log)
            if (const auto found = entry.find(label); found != std::wstring::npos)
                return std::stoi(entry.substr(found + label.size()));
        return -1;
    }
};

Files ExampleFiles()
{
    Files files;
    for (const char* const name : FileNames)
        files.push_back(ReadBytes(std::string(QOVXML_EXAMPLES) + "/xml/" + name));
    return files;
}

machine::MachineDescription ExampleMachine()
{
    return machine::ReadMachine(QOVXML_EXAMPLES "/machines/laptop-spatialf.json");
}

Outcome RunExample(const machine::MachineDescription& description)
{
    const ScratchFolder scratch;
    const Files before = ExampleFiles();
    for (std::size_t index = 0; index < before.size(); ++index)
        WriteBytes(scratch.Path(FileNames[index]), before[index]);
    RecordingLogger logger;
    Outcome outcome;
    {
        const simulation::SimulatedMachine machine(description);
        outcome.message = MessageOf([&] {
            QovXml::ConfigureQovXmls(
                {scratch.Path(FileNames[0]), scratch.Path(FileNames[1]), scratch.Path(FileNames[2])}, logger);
        });
        outcome.calls = machine.Calls();
    }
    outcome.log = logger.Texts();
    for (const char* const name : FileNames)
        outcome.files.push_back(ReadBytes(scratch.Path(name)));
    return outcome;
}

// What a failed call comes to.
enum class Effect {
    Throws,  // the run ends with the message
    Skips,   // the endpoint gives no firmware module
    Ignored,
    Unlists,  // effects in the registry are not found
    Older,    // Windows counts as 8.0
};

struct Row {
    Effect effect;
    std::string message{};
    bool withCode = true;
};
using Rows = std::map<std::string, Row>;

// While the firmware modules are looked for: calls that end the run, calls that end the endpoint, calls that end
// nothing.
const Rows FirmwareRows = {
    {"CoInitializeEx", {Effect::Throws, "Failed to initialize COM interface", false}},
    {"CoCreateInstance", {Effect::Throws, "Failed to initialize COM device interface! Result: 0x"}},
    {"IMMDeviceEnumerator::EnumAudioEndpoints", {Effect::Throws, "EnumAudioEndpoints failed! Result: 0x"}},
    {"IMMDeviceCollection::GetCount", {Effect::Throws, "GetCount() for devices list failed! Result: 0x"}},
    {"IMMDeviceCollection::Item", {Effect::Throws, "Failed to get device from collection! Result: 0x"}},
    {"IMMDevice::GetId", {Effect::Throws, "Failed to get device id! Result: 0x"}},
    {"IMMDevice::OpenPropertyStore", {Effect::Throws, "Failed to open device property store! Result: 0x"}},
    {"IPropertyStore::GetValue", {Effect::Throws, "Failed to read device GUID! Result: 0x"}},
    {"CLSIDFromString", {Effect::Throws, "Failed to convert device GUID! Result: 0x"}},
    {"IMMDevice::QueryInterface", {Effect::Throws, "Endpoint interface query failed! Result: 0x"}},
    {"IMMEndpoint::GetDataFlow", {Effect::Throws, "GetDataFlow failed! Result: 0x"}},
    {"IMMDevice::Activate IDeviceTopology", {Effect::Throws, "Device activation failed! Result: 0x"}},
    {"IDeviceTopology::GetConnector of endpoint", {Effect::Throws, "GetConnector failed! Result: 0x"}},
    {"StringFromCLSID", {Effect::Throws, "StringFromCLSID() call failed", false}},
    {"RegOpenKeyExW", {Effect::Throws, "Could not read registry value. RegOpenKeyEx: 0x"}},
    {"RegQueryValueExW", {Effect::Throws, "Could not read registry value. RegQueryValueEx: 0x"}},
};
const std::set<std::string> SkippingCalls = {"IConnector::IsConnected",
                                             "IConnector::GetType",
                                             "IConnector::GetConnectedTo",
                                             "IConnector::QueryInterface",
                                             "IPart::EnumPartsIncoming",
                                             "IPart::EnumPartsOutgoing",
                                             "IPartsList::GetCount",
                                             "IPartsList::GetPart",
                                             "IPart::GetPartType",
                                             "IPart::GetLocalId",
                                             "IPart::QueryInterface",
                                             "IPart::GetTopologyObject",
                                             "IAudioInputSelector::SetSelection",
                                             "IDeviceTopology::GetDeviceId",
                                             "IDeviceTopology::GetConnectorCount",
                                             "IMMDeviceEnumerator::GetDevice",
                                             "IMMDevice::Activate IKsControl",
                                             "IKsControl::KsProperty",
                                             "scan for the pin"};
const std::set<std::string> IgnoredCalls = {"IConnector::GetConnectorIdConnectedTo",
                                            "IConnector::GetDeviceIdConnectedTo",
                                            "IPart::Activate IAudioInputSelector",
                                            "IPart::Activate IAudioOutputSelector",
                                            "IPart::GetLocalId of the end, no descriptor",
                                            "scan beside the pin",
                                            "RegCloseKey"};

// Afterwards.
const Rows ApoRows = {
    {"CoCreateInstance", {Effect::Throws, "CoCreateInstance() failed with status: 0x"}},
    {"IMMDeviceEnumerator::EnumAudioEndpoints", {Effect::Throws, "EnumAudioEndpoints() failed with status: "}},
    {"IMMDeviceCollection::GetCount", {Effect::Throws, "pCollection->GetCount() failed with status: "}},
    {"IMMDeviceCollection::Item", {Effect::Throws, "pCollection->Item() failed with status: "}},
    {"IMMDevice::GetId", {Effect::Throws, "pEndpoint->GetId() failed with status: "}},
    {"IMMDevice::OpenPropertyStore", {Effect::Throws, "pEndpoint->OpenPropertyStore() failed with status: "}},
    {"IPropertyStore::GetValue", {Effect::Throws, "pProps->GetValue() failed with status: "}},
    {"CLSIDFromString", {Effect::Throws, "Call to CLSIDFromString() API failed with error code: 0x"}},
    {"CLSIDFromString of a slot", {Effect::Unlists}},
    {"StringFromCLSID", {Effect::Throws, "StringFromCLSID() call failed", false}},
    {"RegOpenKeyW", {Effect::Throws, "Unable to open registry key", false}},
    {"RegQueryInfoKeyW", {Effect::Unlists}},
    {"RegEnumKeyExW", {Effect::Unlists}},
    {"RegEnumKeyExW of an inactive endpoint", {Effect::Ignored}},
    {"RegOpenKeyExW", {Effect::Throws, "Could not read registry value. RegOpenKeyEx: 0x"}},
    {"RegQueryValueExW", {Effect::Throws, "Could not read registry value. RegQueryValueEx: 0x"}},
    {"RegCloseKey", {Effect::Ignored}},
    {"RegCloseKey of the endpoints", {Effect::Throws, "Unable to close registry key", false}},
    {"VerifyVersionInfoW", {Effect::Older}},
};

// Reads the calls of a run in order and names each by what it was made for.
class Reader {
public:
    explicit Reader(const std::vector<simulation::CallRecord>& calls) : calls_(calls) {}

    // The name of the call at `index`; to be asked in order.
    std::string NameOf(std::size_t index)
    {
        const simulation::CallRecord& record = calls_[index];
        const std::string& call = record.call;
        if (call == "IMMDeviceEnumerator::EnumAudioEndpoints" && ++enumerations_ > 1)
            inFirmware = false;
        else if (call == "CoCreateInstance" && enumerations_ == 1)
            inFirmware = false;
        return inFirmware ? FirmwareName(index, record) : ApoName(index, call);
    }

    bool inFirmware = true;
    std::size_t endpoint = 0;  // the one whose firmware modules are looked for

private:
    std::string FirmwareName(std::size_t index, const simulation::CallRecord& record)
    {
        const std::string& call = record.call;
        if (call == "IMMDeviceCollection::Item") {
            endpoint = items_++;
            scanning_ = false;
        }
        const bool first = scanning_ && (record.arguments == "0" || record.arguments == "00010000, 00010000, 1" ||
                                         record.object.ends_with("/00010000"));
        if (scanning_ && call != "IDeviceTopology::GetDeviceId")
            return first && capture_ ? "scan for the pin" : "scan beside the pin";
        scanning_ = call == "IDeviceTopology::GetConnectorCount";
        capture_ = call == "IPart::EnumPartsOutgoing" || (capture_ && call != "IPart::EnumPartsIncoming");
        if (call == "IDeviceTopology::GetConnector")
            return call + " of endpoint";
        // The filters of the first hop have no audio engine, and not every pin has modules: what fails anyway is no
        // loss.
        if (call == "IKsControl::KsProperty" && FAILED(record.result))
            return "scan beside the pin";
        if (call == "IPart::GetLocalId" && calls_[index + 1].call == "IKsControl::KsProperty" &&
            FAILED(calls_[index + 1].result))
            return call + " of the end, no descriptor";
        return call.ends_with("::Activate") ? call + " " + record.arguments : call;
    }

    std::string ApoName(std::size_t index, const std::string& call)
    {
        const std::string& previous = calls_[index - 1].call;
        if (call == "RegCloseKey" && previous != "RegQueryValueExW") {
            ++closedLists_;
            return call + " of the endpoints";
        }
        if (call == "RegEnumKeyExW" && calls_[index + 2].call != "StringFromCLSID")
            return call + " of an inactive endpoint";
        // Behind the lists, every endpoint has five slots and a wrapped list read.
        if (closedLists_ == 2 && call == "StringFromCLSID")
            ++propertyReads_;
        if (closedLists_ == 2 && call == "CLSIDFromString" && propertyReads_ % 6 != 0)
            return call + " of a slot";
        return call;
    }

    const std::vector<simulation::CallRecord>& calls_;
    int enumerations_ = 0;
    std::size_t items_ = 0;
    bool scanning_ = false;
    bool capture_ = false;
    int closedLists_ = 0;
    int propertyReads_ = 0;
};

TEST(FaultSweep, EveryFailedCallComesToWhatItMust)
{
    const machine::MachineDescription machine = ExampleMachine();
    machine::MachineDescription withoutFirmware = machine;
    for (machine::AdapterDevice& device : withoutFirmware.devices)
        device.filter.reset();
    machine::MachineDescription withoutApo = machine;
    for (machine::Endpoint& endpoint : withoutApo.endpoints)
        endpoint.fxProperties.reset();
    const Outcome whole = RunExample(machine);
    const Files before = ExampleFiles();
    const Files onlyApo = RunExample(withoutFirmware).files;
    const Files onlyFirmware = RunExample(withoutApo).files;
    const int modulesOf[] = {3, 1, 0};  // speakers, microphone array, headset microphone
    ASSERT_EQ(whole.Modules(L"FW"), 4);
    ASSERT_EQ(std::set({before, whole.files, onlyApo, onlyFirmware}).size(), 4u);

    Reader reader(whole.calls);
    std::map<std::string, unsigned> counts;
    for (std::size_t index = 0; index < whole.calls.size(); ++index) {
        const std::string& call = whole.calls[index].call;
        const bool windowsCode = call.starts_with("Reg") || call.starts_with("Verify");
        const std::string name = reader.NameOf(index);
        SCOPED_TRACE("call " + std::to_string(index) + ": " + name);
        const Rows& rows = reader.inFirmware ? FirmwareRows : ApoRows;
        const bool listed = reader.inFirmware && (SkippingCalls.contains(name) || IgnoredCalls.contains(name));
        ASSERT_TRUE(listed || rows.contains(name));
        const Row row = !listed ? rows.at(name) : Row{SkippingCalls.contains(name) ? Effect::Skips : Effect::Ignored};

        machine::MachineDescription failing = machine;
        failing.faults = {{call, ++counts[call], windowsCode ? LONG{ERROR_ACCESS_DENIED} : LONG{E_FAIL}}};
        const auto held = CurrentHoldings();
        const Outcome outcome = RunExample(failing);
        EXPECT_EQ(CurrentHoldings(), held);

        if (row.effect == Effect::Throws) {
            const std::string code = windowsCode ? "5" : "80004005";
            EXPECT_EQ(outcome.message, row.message + (row.withCode ? code : ""));
            EXPECT_EQ(outcome.files, before);
            continue;
        }
        EXPECT_EQ(outcome.message, "(nothing thrown)");
        const int lost = row.effect == Effect::Skips ? modulesOf[reader.endpoint] : 0;
        EXPECT_EQ(outcome.Modules(L"FW"), whole.Modules(L"FW") - lost);
        EXPECT_EQ(outcome.Modules(L"APO") < whole.Modules(L"APO"), row.effect == Effect::Unlists);
        if (row.effect == Effect::Unlists)
            EXPECT_TRUE(outcome.files == whole.files || outcome.files == onlyFirmware);
        else
            EXPECT_EQ(outcome.files, row.effect == Effect::Older ? onlyFirmware : lost == 3 ? onlyApo : whole.files);
    }
}

}  // namespace
