// Whole runs show which endpoints are listed, and the sweep of faults what a failing registry comes to.
#include "discovery/EndpointRegistry.h"

#include "simulation/SimulatedMachine.h"
#include "support/ComApartment.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"

#include <gtest/gtest.h>

#include <numeric>
#include <tuple>

namespace {

using qov::Bytes;
using simulation::SimulatedMachine;

// What is thrown, read and logged.
using Reading = std::tuple<std::string, Bytes, std::vector<std::pair<LogLevel, std::wstring>>>;

using enum qov::DataFlow;
using enum qov::EndpointPropertyKind;
constexpr const char* Nothing = "(nothing thrown)";

Reading Read(unsigned endpoint, qov::DataFlow flow, qov::EndpointPropertyKind kind, const std::wstring& value)
{
    qov::AudioEndpoint record;
    record.AudioEndpointGuid.Data1 = endpoint;
    record.Flow = flow;
    RecordingLogger logger;
    Bytes bytes;
    std::string message = MessageOf([&] { bytes = qov::ReadEndpointProperty(record, kind, value, logger); });
    return {message, bytes, logger.messages};
}

TEST(EndpointRegistryTest, ReadsTextsNumbersAndBytesOnly)
{
    const std::wstring nul(1, 0);
    const std::wstring start = L"] Registry key value name: value\n";
    const std::wstring text = L"[REG_SZ" + start + L"Value get: ";
    const std::wstring number = L"[REG_DWORD" + start + L"Value get: ";
    const std::wstring four = L"\nValue size in bytes: 4";
    const std::wstring binary = L"[REG_BINARY" + start + L"Binary value get:\n";
    const std::wstring size = L"Value size in bytes: ";
    const std::wstring first32 =
        L"0x0 0x1 0x2 0x3 0x4 0x5 0x6 0x7 0x8 0x9 0xa 0xb 0xc 0xd 0xe 0xf 0x10 0x11 0x12 0x13 "
        L"0x14 0x15 0x16 0x17 0x18 0x19 0x1a 0x1b 0x1c 0x1d 0x1e 0x1f ";
    Bytes counted33(33);
    std::iota(counted33.begin(), counted33.end(), std::uint8_t{});
    const Bytes counted32(counted33.begin(), counted33.end() - 1);
    struct Row {
        DWORD type;
        Bytes stored;
        Bytes read;
        std::wstring logged;  // empty for a type that is refused
    };
    std::vector<Row> rows = {
        {REG_SZ, {'a', 0, 'b', 0}, {'a', 0, 'b', 0, 0, 0}, text + L"a"},
        {REG_SZ, {'a', 0, 'b', 0, 0, 0}, {'a', 0, 'b', 0, 0, 0, 0, 0}, text + L"ab"},
        {REG_SZ, {'a', 0, 0, 0, 0, 0}, {'a', 0, 0, 0, 0, 0, 0, 0}, text + L"a" + nul},
        {REG_SZ, {'a', 0, 0, 0, 0xac, 32, 0, 0}, {'a', 0, 0, 0, 0xac, 32, 0, 0, 0, 0}, text + L"a" + nul + L"\x20ac"},
        {REG_SZ, {}, {0, 0}, text},
        {REG_SZ, {'a'}, {0, 0}, text},
        {REG_SZ, {'a', 0, 'b', 0, 'c'}, {'a', 0, 'b', 0, 0, 0}, text + L"a"},
        {REG_DWORD, {0xef, 0xbe, 0xad, 0xde}, {0xef, 0xbe, 0xad, 0xde}, number + L"3735928559 (0xdeadbeef)" + four},
        {REG_DWORD, {0x34, 0x12}, {0x34, 0x12}, number + L"4660 (0x1234)" + four},
        {REG_DWORD, {}, {}, number + L"0 (0x0)" + four},
        {REG_BINARY, {}, {}, binary + size + L"0\n"},
        {REG_BINARY, {0, 5, 31, 171}, {0, 5, 31, 171}, binary + L"0x0 0x5 0x1f 0xab " + size + L"4\n"},
        {REG_BINARY, counted32, counted32, binary + first32 + size + L"32\n"},
        {REG_BINARY, counted33, counted33, binary + first32 + L"0x20 ...\n" + size + L"33\n"},
    };
    for (const DWORD type : {0u, 2u, 5u, 6u, 7u, 8u, 9u, 10u, 11u})
        rows.push_back({type, Bytes(8), {}, L""});
    for (const Row& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows.data()));
        machine::MachineDescription description;
        description.endpoints.resize(1);
        description.endpoints[0].fxProperties = {{L"value", row.type, row.stored}};
        const SimulatedMachine machine(description);
        EXPECT_EQ(Read(0, Render, FxProperties, L"value"),
                  row.logged.empty() ? Reading("Unsupported registry value type", {}, {})
                                     : Reading(Nothing, row.read, {{LogLevel::Info, row.logged}}));
    }
}

TEST(EndpointRegistryTest, FindsTheValueOrTellsWhyNot)
{
    const struct {
        unsigned endpoint;
        qov::DataFlow flow;
        qov::EndpointPropertyKind kind;
        const wchar_t* value;
        Bytes read;
        std::string message = Nothing;
    } rows[] = {
        {1, Render, Properties, L"Both", {'p'}},
        {1, Render, FxProperties, L"Both", {'f'}},
        {2, Capture, Properties, L"Both", {'c'}},
        {1, Capture, Properties, L"Both", {}},
        {1, None, FxProperties, L"Both", {}, "Unsupported endpoint data flow."},
        {1, All, Properties, L"Both", {}, "Unsupported endpoint data flow."},
        {1, All, qov::EndpointPropertyKind{2}, L"Both", {}, "Unsupported endpoint property type."},
        {1, Render, FxProperties, L"Other", {}, "Could not read registry value. RegQueryValueEx: 0xea"},
    };
    machine::MachineDescription description;
    description.endpoints.resize(2);
    description.endpoints[0].guid.Data1 = 1;
    description.endpoints[1].guid.Data1 = 2;
    description.endpoints[1].flow = eCapture;
    description.endpoints[0].properties = {{L"Both", REG_BINARY, {'p'}}};
    description.endpoints[0].fxProperties = {{L"Both", REG_BINARY, {'f'}}, {L"Other", REG_DWORD, Bytes(8)}};
    description.endpoints[1].properties = {{L"Both", REG_BINARY, {'c'}}};
    const SimulatedMachine machine(description);
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        const auto [message, bytes, log] = Read(row.endpoint, row.flow, row.kind, row.value);
        EXPECT_EQ(message, row.message);
        EXPECT_EQ(bytes, row.read);
    }
}

TEST(EndpointRegistryTest, TakesDevicePathsApart)
{
    const std::wstring rows[][3] = {
        // Path, device id and name. A stored path ends with two NUL units, for which + stands: any two are cut off.
        {LR"({2}.\\?\hdaudio#FUNC_01&Ven#4&0#{6994}\SpeakerTopo++)", L"FUNC_01&Ven", L"SpeakerTopo"},
        {LR"(a\b\c\d#e#f#g\x)", L"e", L"x"},
        {LR"(\\\#e##g\++)", L"e", L""},
        {LR"(a\b\c\d#e#f#g#\Topo\)", L"e", L"To"},
        {LR"(a\b\c\d#e#f#g#h\Topo++)", L"", L"Topo"},
        {LR"(a\b\c\d#e#f#g\)", L"", L""},
        {L"", L"", L""},
    };
    for (const auto& [path, deviceId, endpointName] : rows) {
        EXPECT_EQ(qov::ExtractDeviceId(path), deviceId) << path;
        EXPECT_EQ(qov::ExtractEndpointName(path), endpointName) << path;
    }
}

TEST(EndpointRegistryTest, PassesOverKeysWhoseNamesAreTooLong)
{
    for (const auto& [length, message] :
         {std::pair(254u, "Call to CLSIDFromString() API failed with error code: 0x800401f3"),
          std::pair(255u, Nothing)}) {
        machine::MachineDescription description;
        description.furtherRenderKeys = {std::wstring(length, L'x')};
        const SimulatedMachine machine(description);
        const ComApartment apartment;
        RecordingLogger logger;
        EXPECT_EQ(MessageOf([&] { qov::GetAudioEndpoints(Render, logger); }), message);
    }
}

TEST(EndpointRegistryTest, ListsOneDirectionOnly)
{
    const SimulatedMachine machine({});
    const ComApartment apartment;
    RecordingLogger logger;
    EXPECT_EQ(MessageOf([&] { qov::GetAudioEndpoints(All, logger); }),
              "Unsupported endpoint type. Use either 'Capture' or 'Render'.");
}

// What only the stand-in can tell.
TEST(RegistryCallsStandInTest, AreRecordedAndFailByKeyAndValue)
{
    machine::MachineDescription machine;
    machine.endpoints.resize(1);
    machine.endpoints[0].properties = {{L"v\u00e4lue", REG_BINARY, {1}}, {L"other", REG_BINARY, {2}}};
    const std::string key =
        R"(SOFTWARE\Microsoft\Windows\CurrentVersion\MMDevices\Audio\Render\{00000000-0000-0000-0000-000000000000}\)";
    machine.faults = {{"RegQueryValueExW", {}, ERROR_ACCESS_DENIED, key + "Properties", "v\u00e4lue"},
                      {"RegOpenKeyExW", {}, 19, key + "Other"}};
    const SimulatedMachine simulated(machine);
    const std::string denied = "Could not read registry value. RegQueryValueEx: 0x5";
    EXPECT_EQ(std::get<0>(Read(0, Render, Properties, L"v\u00e4lue")), denied);
    EXPECT_EQ(std::get<1>(Read(0, Render, Properties, L"other")), Bytes{2});
    EXPECT_EQ(std::get<1>(Read(0, Render, FxProperties, L"other")), Bytes{});

    using Record = std::tuple<std::string, std::string, std::string, LONG>;
    std::vector<Record> records;
    for (const simulation::CallRecord& call : simulated.Calls())
        records.emplace_back(call.call, call.object, call.arguments, call.result);
    const Record guid = {"StringFromCLSID", "", "{00000000-0000-0000-0000-000000000000}", 0};
    const Record open = {"RegOpenKeyExW", key + "Properties", "", 0},
                 close = {"RegCloseKey", key + "Properties", "", 0};
    const Record other = {"RegQueryValueExW", key + "Properties", "other", 0};
    EXPECT_EQ(records, (std::vector<Record>{guid,
                                            open,
                                            {"RegQueryValueExW", key + "Properties", "v\u00e4lue", 5},
                                            close,  //
                                            guid,
                                            open,
                                            other,
                                            other,
                                            close,  //
                                            guid,
                                            {"RegOpenKeyExW", key + "FxProperties", "", 2}}));
}

}  // namespace
