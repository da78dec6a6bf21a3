// Ways, reasons and culprits, read from runs on machines that differ from the example laptop in one thing.
#include "host/review/Culprit.h"
#include "host/review/Endpoints.h"
#include "host/review/Trace.h"
#include "machine/MachineJson.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

namespace {

using namespace host;
using machine::MachineDescription;

constexpr char Topology[] = R"({2}.\\?\hdaudio#func_01&ven_10ec&dev_0285&subsys_17aa22c6&rev_1000#4&1b7a9c25&0&0001#)"
                            R"({6994ad04-93ef-11d0-a3cc-00a0c9223196}\espeakertopo)";
constexpr char Wave[] = R"({2}.\\?\hdaudio#func_01&ven_10ec&dev_0285&subsys_17aa22c6&rev_1000#4&1b7a9c25&0&0001#)"
                        R"({6994ad04-93ef-11d0-a3cc-00a0c9223196}\espeakerwave)";
constexpr LONG AccessDenied = static_cast<LONG>(0x80070005);

MachineDescription Laptop() { return machine::ReadMachine(QOVXML_EXAMPLES "/machines/laptop-spatialf.json"); }

rehearsal::Outcome OutcomeOn(const MachineDescription& machine)
{
    return rehearsal::RehearseContents(machine, {{{"q.xml", {}}, {"s.xml", {}}, {"p.xml", {}}}});
}

EndpointView Speakers(const MachineDescription& machine)
{
    const rehearsal::Outcome outcome = OutcomeOn(machine);
    return ReadEndpoints(machine, outcome, ReadFindings(outcome)).at(0);
}

std::string Local(const std::string& globalId) { return globalId.substr(globalId.rfind('\\') + 1); }

TEST(WalksTest, TheWayIsTheOneThatTheRunWent)
{
    const EndpointView speakers = Speakers(Laptop());
    const Walk walk = speakers.walk.value();
    std::string told;
    for (const Stretch& stretch : walk.way) {
        told += Local(stretch.connector) + " > " + Local(stretch.entry) + ":";
        for (const PassedPart& part : stretch.parts)
            told += " " + part.globalId.substr(part.globalId.size() - 8) + (part.connector ? "c" : "") +
                    (part.switched ? "s" : "");
        told += "\n";
    }
    EXPECT_EQ(told,
              "{0.0.0.00000000}.{e5a0c9d2-6f34-4b18-9a7d-02c4f8b1637e}/00010000 > espeakertopo/00010001: 00020002s "
              "00020001 00020000 00010000c\n"
              "espeakertopo/00010000 > espeakerwave/00010003: 00020001 00020000 00010000c\n");
    EXPECT_EQ(Local(walk.softwareConnector), "espeakerwave/00010000");
    ASSERT_EQ(walk.pins.size(), 1U);
    EXPECT_EQ(walk.pins[0].id + ":" + std::to_string(walk.pins[0].count.value()), "1:3");
    EXPECT_EQ(speakers.firmware.size(), 3U);
    EXPECT_EQ(speakers.effects.size(), 3U);
    EXPECT_EQ(speakers.effects[0].makersName, "ZAN APO SFX");
    EXPECT_EQ(speakers.wrapped.size(), 2U);
    EXPECT_EQ(speakers.why + walk.why, "");
}

machine::PartDescription& PartOf(MachineDescription& machine, std::size_t device, UINT localId)
{
    auto& parts = machine.devices.at(device).topology.parts;
    return *std::find_if(parts.begin(), parts.end(), [localId](const auto& part) { return part.localId == localId; });
}

machine::PpApiPin& Pin(MachineDescription& machine) { return machine.devices.at(1).filter->pins.at(0); }

TEST(WalksTest, AnEndpointWithoutModulesTellsWhy)
{
    const struct {
        std::function<void(MachineDescription&)> change;
        std::string why;  // how it begins
        bool blames;      // a call or an answer
    } rows[] = {
        {[](auto& m) {
             m.faults = {{"IPart::EnumPartsIncoming", {}, AccessDenied, Wave + std::string("/00010003")}};
         },
         R"(passed over: IPart::EnumPartsIncoming of ...\espeakerwave/00010003 failed with 80070005)", true},
        {[](auto& m) {
             m.faults = {{"IPart::GetTopologyObject", {}, AccessDenied, Wave + std::string("/00010000")}};
         },
         R"(passed over: IPart::GetTopologyObject of ...\espeakerwave/00010000 failed with 80070005)", true},
        // The first neighbour fails, the second leads nowhere.
        {[](auto& m) {
             m.faults = {{"IPart::EnumPartsIncoming", {}, AccessDenied, Topology + std::string("/00020001")}};
             PartOf(m, 0, 0x00020002).incoming = {0x00020001, 0x00020000};
             PartOf(m, 0, 0x00020000).incoming.reset();
         },
         R"(passed over: no part leads on from ...\espeakertopo/00020000, and IPart::EnumPartsIncoming of )", true},
        {[](auto& m) { m.endpoints[0].topology = machine::UnconnectedTopology(); },
         "passed over: {0.0.0.00000000}.{e5a0c9d2-6f34-4b18-9a7d-02c4f8b1637e}/00000000 is connected to nothing",
         false},
        {[](auto& m) { PartOf(m, 1, 0x00020001).incoming = std::vector<UINT>(); },
         R"(passed over: no part leads on from ...\espeakerwave/00020001)", false},
        {[](auto& m) { PartOf(m, 1, 0x00020000).incoming = {0x00020001}; }, "passed over: the parts lead back", false},
        {[](auto& m) { m.devices[1].filter->audioEngineNodes.clear(); }, "no pin to ask", false},
        {[](auto& m) {
             Pin(m).version = {2, 0, 0, 0, 0};
         },
         "no pin speaks the PP API", false},
        {[](auto& m) {
             m.faults = {{"IKsControl::KsProperty", {}, AccessDenied}};
         },
         "no pin to ask: the driver names no offload pin, and no signal path leads to a software pin; "
         R"(IKsControl::KsProperty of ...\espeakerwave (audio engine descriptor of node 0) failed with 80070005)",
         true},
        {[](auto& m) { Pin(m).reply.reset(); }, "pin 1 its list of modules cannot be read (80070490", false},
        {[](auto& m) { Pin(m).reply = machine::Bytes(7); }, "pin 1 its list of modules is too long or too short", true},
        {[](auto& m) { Pin(m).reply = machine::ModuleListReply({}); }, "pin 1 lists no module", false},
        {[](auto& m) { Pin(m).reply->pop_back(); }, "pin 1 promises 3 modules that its list does not hold", true},
        {[](auto& m) { m.endpoints[0].state = DEVICE_STATE_DISABLED; }, "not active", false},
        {[](auto& m) {
             m.faults = {{"IMMDevice::GetId", 1, AccessDenied}};
         },
         "the run ended before it", false},
        {[](auto& m) {
             m.faults = {{"IMMDevice::Activate", 1, AccessDenied}};
         },
         "the run ended here: Device activation failed! Result: 0x80070005", false},
    };
    for (const auto& row : rows) {
        MachineDescription laptop = Laptop();
        row.change(laptop);
        const EndpointView speakers = Speakers(laptop);
        EXPECT_TRUE(speakers.why.starts_with(row.why)) << row.why << "\nbut: " << speakers.why;
        EXPECT_EQ(speakers.walk && (speakers.walk->toBlame || speakers.walk->damaged), row.blames) << row.why;
        EXPECT_TRUE(speakers.firmware.empty()) << row.why;
    }
}

machine::RegistryValue& Value(MachineDescription& machine, const wchar_t* name)
{
    auto& values = machine.endpoints[0].fxProperties.value();
    return *std::find_if(values.begin(), values.end(), [name](const auto& value) { return value.name == name; });
}
constexpr wchar_t MfxSlot[] = L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},6";
constexpr wchar_t SfxSlot[] = L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},5";
constexpr wchar_t WrappedList[] = L"{bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5";

struct CulpritRow {
    std::function<void(MachineDescription&)> change;
    std::string command;
    std::vector<std::string> lines;  // how they begin behind the endpoint's name
};

void ExpectCulprits(const std::vector<CulpritRow>& rows)
{
    for (const CulpritRow& row : rows) {
        MachineDescription laptop = Laptop();
        row.change(laptop);
        const rehearsal::Outcome outcome = OutcomeOn(laptop);
        const Culprits found = FindCulprits(laptop, outcome, ReadFindings(outcome));
        ASSERT_EQ(found.lines.size(), row.lines.size()) << outcome.failure.value_or("") << row.command;
        for (std::size_t index = 0; index < row.lines.size(); ++index)
            EXPECT_TRUE(found.lines[index].starts_with(row.lines[index])) << found.lines[index];
        EXPECT_TRUE(row.lines.empty() || found.command == row.command) << found.command;
    }
}

void AddElevenSpeakers(MachineDescription& machine)
{
    for (unsigned number = 1; number <= 11; ++number) {
        machine::Endpoint speakers = machine.endpoints[0];
        speakers.guid.Data1 = number;
        speakers.guidPropertyText = machine::UpperGuidText(speakers.guid);
        speakers.deviceId = machine::DefaultDeviceId(speakers);
        speakers.friendlyName = L"Speakers " + std::to_wstring(number);
        machine.endpoints.push_back(std::move(speakers));
    }
}

TEST(CulpritTest, NamesEndpointAndValueOrCall)
{
    const std::string on = "Speakers (High Definition Audio Device): ";
    std::vector<std::string> ofTwelve(10, "Speakers ");
    ofTwelve.emplace_back("and 2 more");
    ExpectCulprits({
        {[](auto&) {}, "", {}},
        {[](auto& m) { Value(m, MfxSlot).type = REG_MULTI_SZ; },
         "trace",
         {on + "FxProperties value {d04e05a6-594b-4fb6-a80d-01af5eed7d1d},6 (MFX effect) has the type REG_MULTI_SZ"}},
        {[](auto& m) { Value(m, WrappedList).data = machine::TextData(L"{221EB342-1464-4062-AE38-12C2C148B1CB},9"); },
         "trace",
         {on + "FxProperties value {bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5 (wrapped APO list) holds \"{221EB342-"}},
        {[](auto& m) { m.furtherRenderKeys = {L"no guid"}; },
         "trace",
         {"the registry key \"no guid\" among the render endpoints is named by no GUID"}},
        {[](auto& m) {
             Pin(m).reply = machine::ModuleListReply({{7, {}}});
         },
         "trace",
         {on + "pin 1 reports such"}},
        {[](auto& m) { Value(m, MfxSlot).data = machine::TextData(L"{7ba4ceb1-0a15-4ae4-b090-461d48fb641c}"); },
         "list",
         {on + "ZAN APO SFX, SFX effect", on + "ZAN APO MFX, MFX effect"}},
        {AddElevenSpeakers, "list", ofTwelve},
        {[](auto& m) { m.endpoints[0].guidPropertyText = L"<nix>"; },
         "trace",
         {on + "its property says \"<nix>\" where its GUID belongs"}},
        {[](auto& m) { Value(m, SfxSlot).data = machine::TextData(L"{272B1E6E broken"); },
         "trace",
         {on + "FxProperties value {d04e05a6-594b-4fb6-a80d-01af5eed7d1d},5 (SFX effect) holds \"{272B1E6E broken\""}},
        {[](auto& m) { Pin(m).reply = machine::Bytes(7); }, "trace", {on + "pin 1 its list of modules is too"}},
        {[](auto& m) {
             m.faults = {{"IPropertyStore::GetValue", 1, AccessDenied}};
         },
         "trace --failed",
         {on + "IPropertyStore::GetValue of {0.0.0.00000000}.{e5a0c9d2-6f34-4b18-9a7d-02c4f8b1637e} "
               "(the endpoint's GUID) failed"}},
    });
}

TEST(CulpritStandInTest, NamesTheCallAndNoEndpointThatItIsNotMadeOn)
{
    const struct {
        const char* call;
        LONG result;
        std::vector<std::string> lines;
    } rows[] = {
        {"RegQueryValueExW",
         5,
         {R"(Speakers (High Definition Audio Device): RegQueryValueExW of ...\Render\{E5A0C9D2-)"}},
        {"StringFromCLSID", AccessDenied, {"Speakers (High Definition Audio Device): StringFromCLSID ({E5A0C9D2-"}},
        {"CoInitializeEx", AccessDenied, {"CoInitializeEx (multithreaded) failed with 80070005"}},
        {"RegOpenKeyW", 5, {R"(RegOpenKeyW of ...\Capture failed with 5)"}},
        {"RegCloseKey", 6, {R"(RegCloseKey of ...\Capture failed with 6)"}},
        // Without a failure of the run.
        {"RegEnumKeyExW",
         5,
         {R"(RegEnumKeyExW of ...\Capture (0) failed)", R"(RegEnumKeyExW of ...\Render (0) failed)"}},
        {"RegQueryInfoKeyW", 5, {R"(RegQueryInfoKeyW of ...\Capture )", R"(RegQueryInfoKeyW of ...\Render )"}},
        {"VerifyVersionInfoW", 5, {"VerifyVersionInfoW (6.3) failed with 5"}},
    };
    for (const auto& row : rows)
        ExpectCulprits({{[&row](auto& m) { m.faults = {{row.call, {}, row.result}}; }, "trace --failed", row.lines}});
    MachineDescription laptop = Laptop();
    laptop.faults = {{"RegEnumKeyExW", {}, 5}};
    EXPECT_FALSE(Speakers(laptop).effectsKnown);
}

TEST(TraceTest, FailedStepsAreToldWithinTheirs)
{
    MachineDescription laptop = Laptop();
    laptop.faults = {{"IPart::EnumPartsOutgoing", {}, AccessDenied}};
    std::vector<std::string> failed;
    unsigned devices = 0;
    for (const TraceLine& line : TraceLines(FailedSteps(ReadTrace(OutcomeOn(laptop))))) {
        devices += line.text.ends_with("****** NEXT DEVICE ******") ? 1 : 0;
        EXPECT_EQ(line.failed, line.text.starts_with("!")) << line.text;
        if (line.text.find("EnumPartsOutgoing") != std::string::npos)
            failed.push_back(line.text.substr(line.text.find(" FAILED")));
    }
    // Both capture endpoints. What a driver lacks of what it is asked for is no failure.
    EXPECT_EQ(failed, std::vector<std::string>(2, " FAILED: 80070005, access denied"));
    EXPECT_EQ(devices, 2U);
}

}  // namespace
