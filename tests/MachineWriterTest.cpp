// The JSON form of a machine, written and read again.
#include "machine/MachineJson.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>

namespace {

using machine::Bytes;
using machine::ParseMachine;
using machine::WriteMachine;

std::string WithValue(const std::string& value)
{
    return R"({"windowsVersion": "10.0", "endpoints": [{"guid": "{0A000000-0000-4000-8000-0000000000FF}",
        "flow": "render", "friendlyName": "Speakers", "fxProperties": {"a/b": )" +
           value + "}}]}";
}

TEST(MachineWriterTest, KeepsValuesByteForByte)
{
    const struct {
        const char* value;
        DWORD type;
        Bytes data;
        const char* written = nullptr;  // none: as it was read
    } rows[] = {
        {R"("ab")", REG_SZ, {'a', 0, 'b', 0, 0, 0}},
        {R"("")", REG_SZ, {0, 0}},
        {"\"\xc3\xa9\xe2\x82\xac\xf0\x9f\x8e\xa7\"", REG_SZ, {0xe9, 0, 0xac, 0x20, 0x3c, 0xd8, 0xa7, 0xdf, 0, 0}},
        {R"({ "type": "REG_SZ", "text": "a", "terminators": 0 })", REG_SZ, {'a', 0}},
        {R"({ "type": "REG_SZ", "text": "", "terminators": 0 })", REG_SZ, {}},
        {R"({ "type": "REG_EXPAND_SZ", "text": "a", "terminators": 3 })", REG_EXPAND_SZ, {'a', 0, 0, 0, 0, 0, 0, 0}},
        {R"({ "type": "REG_SZ", "text": "a", "extraBytes": "41 42" })", REG_SZ, {'a', 0, 0, 0, 0x41, 0x42}},
        {R"({ "type": "REG_SZ", "text": "a", "terminators": 0, "extraBytes": "00" })", REG_SZ, {'a', 0, 0}},
        {R"({ "type": "REG_SZ", "text": "a\u0000b" })",
         REG_SZ,
         {'a', 0, 0, 0, 'b', 0, 0, 0},
         R"({ "type": "REG_SZ", "text": "a", "extraBytes": "62 00 00 00" })"},
        {R"({ "type": "REG_MULTI_SZ", "text": "a\u0000b", "terminators": 2 })",
         REG_MULTI_SZ,
         {'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0}},
        {R"({ "type": "REG_SZ", "bytes": "3c d8 00 00" })", REG_SZ, {0x3c, 0xd8, 0, 0}},
        {"4278387201", REG_DWORD, {1, 2, 3, 0xff}},
        {R"({ "type": "REG_DWORD", "bytes": "01 02" })", REG_DWORD, {1, 2}},
        {R"({ "type": "REG_DWORD_BIG_ENDIAN", "number": 258 })", REG_DWORD_BIG_ENDIAN, {0, 0, 1, 2}},
        {R"({ "type": "REG_QWORD", "number": 4294967298 })", REG_QWORD, {2, 0, 0, 0, 1, 0, 0, 0}},
        {R"({ "type": "REG_QWORD", "bytes": "00 00 00 00 00 00 00 80" })", REG_QWORD, {0, 0, 0, 0, 0, 0, 0, 0x80}},
        {R"({ "type": "REG_BINARY", "bytes": "01 02 fF" })",
         REG_BINARY,
         {1, 2, 255},
         R"({ "type": "REG_BINARY", "bytes": "01 02 ff" })"},
        {R"({ "type": 4660, "bytes": "" })", 0x1234, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        const machine::MachineDescription machine = ParseMachine(WithValue(row.value), "a machine");
        const auto stored = machine.endpoints.at(0).fxProperties.value();
        ASSERT_EQ(stored.size(), 1u);
        EXPECT_EQ(stored[0].name, L"a/b");
        EXPECT_EQ(stored[0].type, row.type);
        EXPECT_EQ(stored[0].data, row.data);
        const std::string text = WriteMachine(machine), written = row.written ? row.written : row.value;
        EXPECT_NE(text.find("\"fxProperties\": { \"a/b\": " + written + " }\n"), std::string::npos) << text;
        EXPECT_EQ(ParseMachine(text, "a machine"), machine);
    }
}

TEST(MachineWriterTest, WritesWhatItReads)
{
    int machines = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QOVXML_EXAMPLES "/machines")) {
        SCOPED_TRACE(entry.path());
        const machine::MachineDescription machine = machine::ReadMachine(entry.path().string());
        const std::string text = WriteMachine(machine);
        EXPECT_EQ(ParseMachine(text, "written"), machine);
        EXPECT_EQ(WriteMachine(ParseMachine(text, "written")), text);
        ++machines;
    }
    EXPECT_GT(machines, 0);
}

TEST(MachineWriterTest, WritesInAFixedOrderWithoutDefaults)
{
    // Out of order, with every default said.
    const std::string text = R"({"devices": [{"filter": {"pins": [
          {"id": 3, "reply": "08 00 00 00 00 00 00 00", "version": "01 00 00 00 00", "returnedSize": "untouched"},
          {"reply": "08 00 00 00 01 00 00 00", "reportedSize": 9, "returnedSize": 8, "id": 4}, {"version": "02", "id": 5}],
          "audioEngine": [{"offloadPin": 0, "node": "00000007", "hostPin": 0, "loopbackPin": 2}]},
        "topology": {"signalPaths": [], "parts": [{"id": "0001000A", "outgoing": [], "connector": "softwareIO"}]},
        "id": "wave"}],
      "faults": [{"result": "0x80004005", "occurrence": 2, "object": "wave/0001000a", "call": "IPart::GetLocalId"},
                 {"result": "0x5", "call": "RegCloseKey"},
                 {"result": 5, "arguments": "z", "call": "RegQueryValueExW"}],
      "notes": ["b", "a"],
      "registryKeys": {"capture": [], "render": ["z", "a"]},
      "endpoints": [{"friendlyName": "Speakers", "state": "active", "flow": "render", "registered": true,
        "deviceId": "{0.0.0.00000000}.{0a000000-0000-4000-8000-0000000000ff}",
        "guidPropertyText": "{0A000000-0000-4000-8000-0000000000FF}", "properties": {"z": 1, "a": "x"},
        "topology": {"parts": [{"id": "00000000", "connector": "physicalExternal"}]},
        "guid": "{0A000000-0000-4000-8000-0000000000FF}"}],
      "windowsVersion": "10.00"})";
    EXPECT_EQ(WriteMachine(ParseMachine(text, "m")), R"({
  "windowsVersion": "10.0",
  "endpoints": [
    {
      "guid": "{0a000000-0000-4000-8000-0000000000ff}",
      "flow": "render",
      "friendlyName": "Speakers",
      "properties": { "z": 1, "a": "x" }
    }
  ],
  "devices": [
    {
      "id": "wave",
      "topology": { "parts": [{ "id": "0001000a", "connector": "softwareIO", "outgoing": [] }] },
      "filter": {
        "audioEngine": [{ "node": "00000007", "offloadPin": 0, "loopbackPin": 2 }],
        "pins": [
          { "id": 3, "modules": [], "returnedSize": "untouched" },
          { "id": 4, "reply": "08 00 00 00 01 00 00 00", "reportedSize": 9, "returnedSize": 8 },
          { "id": 5, "version": "02" }
        ]
      }
    }
  ],
  "registryKeys": { "render": ["z", "a"] },
  "faults": [
    { "call": "IPart::GetLocalId", "object": "wave/0001000a", "occurrence": 2, "result": "0x80004005" },
    { "call": "RegCloseKey", "result": 5 },
    { "call": "RegQueryValueExW", "arguments": "z", "result": 5 }
  ],
  "notes": ["b", "a"]
}
)");
}

TEST(MachineWriterTest, WritesNothingThatReadsAsAnotherMachine)
{
    const machine::MachineDescription good = ParseMachine(WithValue("1"), "m");
    const std::function<void(machine::MachineDescription&)> changes[] = {
        [](auto& machine) { machine.endpoints[0].friendlyName = L"a\xd83c"; },
        [](auto& machine) { machine.endpoints[0].fxProperties->at(0).name = L"\xdfa7"; },
        [](auto& machine) { machine.endpoints[0].flow = eAll; },
        [](auto& machine) { machine.endpoints[0].registered = false; },
        [](auto& machine) { machine.endpoints.push_back(machine.endpoints[0]); },
        [](auto& machine) { machine.windowsVersion.major = 1000; },
        [](auto& machine) {
            machine.faults = {{"IPart::GetLocalId", {}, -1, "elsewhere/00010000"}};
        },
    };
    EXPECT_EQ(MessageOf([&] { (void)WriteMachine(good); }), "(nothing thrown)");
    for (const auto& change : changes) {
        machine::MachineDescription machine = good;
        change(machine);
        EXPECT_THROW((void)WriteMachine(machine), std::runtime_error) << &change - changes;
    }
}

}  // namespace
