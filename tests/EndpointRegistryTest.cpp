#include "discovery/EndpointRegistry.h"

#include "SimulatedMachine.h"
#include "Utf16.h"
#include "support/ComApartment.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <algorithm>
#include <numeric>

namespace {

using qov::Bytes;
using simulation::MachineDescription;
using simulation::SimulatedMachine;
using simulation::TextData;

using enum qov::DataFlow;
constexpr auto Values = qov::EndpointPropertyKind::Properties;
constexpr auto Effects = qov::EndpointPropertyKind::FxProperties;
constexpr qov::EndpointPropertyKind NoKind{2};
constexpr const char* Nothing = "(nothing thrown)";

// Endpoint GUIDs that sort as their numbers do.
GUID GuidOf(unsigned number) { return {number, 0x12ab, 0x34cd, {0x8a, 1, 2, 3, 4, 5, 6, 0xef}}; }

simulation::Endpoint MakeEndpoint(unsigned number, EDataFlow flow)
{
    simulation::Endpoint endpoint;
    endpoint.guid = GuidOf(number);
    endpoint.flow = flow;
    endpoint.deviceId = simulation::DefaultDeviceId(endpoint);
    endpoint.guidPropertyText = simulation::UpperGuidText(endpoint.guid);
    return endpoint;
}

// Reads a value of an endpoint; tells what is thrown.
std::string Read(unsigned endpoint, qov::DataFlow flow, qov::EndpointPropertyKind kind, const std::wstring& value,
                 Bytes& bytes, ILogger& logger)
{
    qov::AudioEndpoint record;
    record.AudioEndpointGuid = GuidOf(endpoint);
    record.Flow = flow;
    return MessageOf([&] { bytes = qov::ReadEndpointProperty(record, kind, value, logger); });
}

Bytes Counted(std::size_t count)
{
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{});
    return bytes;
}

TEST(EndpointRegistryTest, ReadsTextsNumbersAndBytesOnly)
{
    const std::wstring nul(1, L'\0');
    const std::wstring text = L"\nValue get: ";
    const std::wstring four = L"\nValue size in bytes: 4";
    const std::wstring binary = L"\nBinary value get:\n";
    const std::wstring size = L"Value size in bytes: ";
    const std::wstring first32 =
        L"0x0 0x1 0x2 0x3 0x4 0x5 0x6 0x7 0x8 0x9 0xa 0xb 0xc 0xd 0xe 0xf 0x10 0x11 0x12 0x13 "
        L"0x14 0x15 0x16 0x17 0x18 0x19 0x1a 0x1b 0x1c 0x1d 0x1e 0x1f ";
    struct Row {
        DWORD type;
        Bytes stored;
        Bytes read;
        std::wstring logged;  // behind the name of the value; empty for a type that is refused
    };
    std::vector<Row> rows = {
        {REG_SZ, {'a', 0, 'b', 0}, {'a', 0, 'b', 0, 0, 0}, text + L"a"},
        {REG_SZ, {'a', 0, 'b', 0, 0, 0}, {'a', 0, 'b', 0, 0, 0, 0, 0}, text + L"ab"},
        {REG_SZ, {'a', 0, 0, 0, 0, 0}, {'a', 0, 0, 0, 0, 0, 0, 0}, text + L"a" + nul},
        {REG_SZ, {'a', 0, 0, 0, 0xac, 32, 0, 0}, {'a', 0, 0, 0, 0xac, 32, 0, 0, 0, 0}, text + L"a" + nul + L"\x20ac"},
        {REG_SZ, {}, {0, 0}, text},
        {REG_SZ, {'a'}, {0, 0}, text},
        {REG_SZ, {'a', 0, 'b', 0, 'c'}, {'a', 0, 'b', 0, 0, 0}, text + L"a"},
        {REG_DWORD, {0xef, 0xbe, 0xad, 0xde}, {0xef, 0xbe, 0xad, 0xde}, text + L"3735928559 (0xdeadbeef)" + four},
        {REG_DWORD, {0x34, 0x12}, {0x34, 0x12}, text + L"4660 (0x1234)" + four},
        {REG_DWORD, {}, {}, text + L"0 (0x0)" + four},
        {REG_BINARY, {}, {}, binary + size + L"0\n"},
        {REG_BINARY, {0, 5, 31, 171}, {0, 5, 31, 171}, binary + L"0x0 0x5 0x1f 0xab " + size + L"4\n"},
        {REG_BINARY, Counted(5), Counted(5), binary + L"0x0 0x1 0x2 0x3 0x4 " + size + L"5\n"},
        {REG_BINARY, Counted(32), Counted(32), binary + first32 + size + L"32\n"},
        {REG_BINARY, Counted(33), Counted(33), binary + first32 + L"0x20 ...\n" + size + L"33\n"},
        {REG_BINARY, Counted(40), Counted(40), binary + first32 + L"0x20 ...\n" + size + L"40\n"},
    };
    for (const DWORD type : {0u, 2u, 5u, 6u, 7u, 8u, 9u, 10u, 11u})
        rows.push_back({type, Counted(8), {}, L""});
    for (const Row& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows.data()));
        MachineDescription description;
        description.endpoints = {MakeEndpoint(1, eRender)};
        description.endpoints[0].fxProperties = {{L"{n},1", row.type, row.stored}};
        const SimulatedMachine machine(description);
        RecordingLogger logger;
        Bytes read;
        const bool refused = row.logged.empty();
        const std::wstring type = row.type == REG_SZ ? L"REG_SZ" : row.type == REG_DWORD ? L"REG_DWORD" : L"REG_BINARY";
        EXPECT_EQ(Read(1, Render, Effects, L"{n},1", read, logger),
                  refused ? "Unsupported registry value type" : Nothing);
        EXPECT_EQ(read, row.read);
        ASSERT_EQ(logger.messages.size(), refused ? 0u : 1u);
        if (!refused) {
            EXPECT_EQ(logger.messages[0].first, LogLevel::Info);
            EXPECT_EQ(logger.messages[0].second, L"[" + type + L"] Registry key value name: {n},1" + row.logged);
        }
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
        {1, Render, Values, L"Text", {'p', 0, 0, 0}},
        {1, Render, Effects, L"Text", {'f', 0, 0, 0}},
        {2, Capture, Values, L"Text", {'c', 0, 0, 0}},
        {2, Capture, Values, L"Number", {}},
        {2, Capture, Effects, L"Text", {}},
        {1, Capture, Values, L"Text", {}},
        {3, Render, Values, L"Text", {}},
        {1, None, Effects, L"Text", {}, "Unsupported endpoint data flow."},
        {1, All, Values, L"Text", {}, "Unsupported endpoint data flow."},
        {1, All, NoKind, L"Text", {}, "Unsupported endpoint property type."},
        {1, Render, Effects, L"LongNumber", {}, "Could not read registry value. RegQueryValueEx: 0xea"},
    };
    MachineDescription description;
    description.endpoints = {MakeEndpoint(1, eRender), MakeEndpoint(2, eCapture), MakeEndpoint(3, eRender)};
    description.endpoints[0].properties = {{L"Text", REG_SZ, TextData(L"p", 0)}, {L"Number", REG_DWORD, Counted(4)}};
    description.endpoints[0].fxProperties = {{L"Text", REG_SZ, TextData(L"f", 0)},
                                             {L"LongNumber", REG_DWORD, Counted(8)}};
    description.endpoints[1].properties = {{L"Text", REG_SZ, TextData(L"c", 0)}};
    description.endpoints[2].registered = false;
    const SimulatedMachine machine(description);
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        RecordingLogger logger;
        Bytes read;
        EXPECT_EQ(Read(row.endpoint, row.flow, row.kind, row.value, read, logger), row.message);
        EXPECT_EQ(read, row.read);
        EXPECT_EQ(logger.messages.size(), row.read.empty() ? 0u : 1u);
    }
}

TEST(EndpointRegistryTest, TakesDevicePathsApart)
{
    const struct {
        std::wstring path;  // + stands for a NUL unit
        std::wstring deviceId;
        std::wstring endpointName;
    } rows[] = {
        {LR"({2}.\\?\hdaudio#FUNC_01&Ven#4&0#{6994}\SpeakerTopo++)", L"FUNC_01&Ven", L"SpeakerTopo"},
        {LR"(a\b\c\d#e#f#g\Topo+)", L"e", L"Top"},
        {LR"(a\b\c\d#e#f#g\++)", L"e", L""},
        {LR"(a\b\c\d#e#f#g\x)", L"e", L"x"},
        {LR"(\\\#e##g\Topo++)", L"e", L"Topo"},
        {LR"(a\b\c\d#+e+#f#g#\Topo\)", L"+e+", L"To"},
        {LR"(a\b\c\d#e#f\Topo++)", L"", L"Topo"},
        {LR"(a\b\c\d#e#f#g#h\Topo++)", L"", L"Topo"},
        {LR"(a\b\c\d#e#f#g\Topo\more++)", L"", L""},
        {LR"(a\b\c\d#e#f#g++)", L"", L""},
        {LR"(a\b\c\d#e#f#g\)", L"", L""},
        {L"", L"", L""},
    };
    for (auto [path, deviceId, endpointName] : rows) {
        SCOPED_TRACE(simulation::Utf16ToUtf8(path));
        for (std::wstring* const text : {&path, &deviceId})
            std::replace(text->begin(), text->end(), L'+', L'\0');
        EXPECT_EQ(qov::ExtractDeviceId(path), deviceId);
        EXPECT_EQ(qov::ExtractEndpointName(path), endpointName);
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

}  // namespace
