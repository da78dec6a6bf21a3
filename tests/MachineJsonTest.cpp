#include "machine/MachineJson.h"

#include "support/Failures.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>

namespace {

using machine::Bytes;
using machine::ParseMachine;

std::string Machine(const std::string& endpoints, const std::string& more = "")
{
    return R"({"windowsVersion": "6.3", "endpoints": [)" + endpoints + "]" + more + "}";
}
std::string Endpoint(const std::string& more, const std::string& guid = "{0A000000-0000-4000-8000-0000000000FF}")
{
    return R"({"guid": ")" + guid + R"(", "friendlyName": "Speakers", )" + more + "}";
}
std::string WithValue(const std::string& value)
{
    return Machine(Endpoint(R"("flow": "render", "fxProperties": {"a/b": )" + value + "}"));
}
std::string WithFault(const std::string& fault)
{
    return Machine("", R"(, "faults": [{"call": "RegOpenKeyW", "result": 2}, )" + fault + "]");
}

TEST(MachineJsonTest, RefusesWithPlaceAndReason)
{
    const std::string flow = R"("flow": "render")", value = "/endpoints/0/fxProperties/a~1b";
    const struct {
        std::string text, place, reason;  // a part of the reason, behind the place
    } rows[] = {
        {"{\n\"windowsVersion\": ?}", "line 2", "syntax error"},
        {R"({"windowsVersion": "10", "endpoints": []})", "/windowsVersion: ", "major.minor"},
        {Machine("", R"(, "colour": 1)"), "/: ", "colour"},
        {Machine("", R"(, "endpoints": [])"), "endpoints", "twice"},
        {Machine("", R"(, "registryKeys": {"capture": ["a", "b\\c"]})"), "/registryKeys/capture/1: ", "backslash"},
        {Machine(Endpoint(R"("state": "active")")), "/endpoints/0: ", "flow"},
        {Machine(Endpoint(R"("flow": "both")")), "/endpoints/0/flow: ", "render"},
        {Machine(Endpoint(flow, "0A000000-0000-4000-8000-0000000000FF")), "/endpoints/0/guid: ", "brace"},
        {Machine(Endpoint(flow + R"(, "registered": false, "properties": {})")), "/endpoints/0: ", "registered"},
        {Machine(Endpoint(flow) + ", " + Endpoint(flow)), "/endpoints/1/guid: ", "earlier"},
        {WithValue("4294967296"), value + ": ", "to 4294967295"},
        {WithValue(R"({"type": "REG_SZ", "text": "x", "bytes": "00"})"), value + ": ", "one of"},
        {WithValue(R"({"type": "REG_SZ", "number": 1})"), value + "/number: ", "REG_SZ"},
        {WithValue(R"({"type": "REG_SZ", "text": "x", "extraBytes": "4"})"), value + "/extraBytes: ", "hexadecimal"},
        {WithFault(R"({"call": "RegOpenKey", "result": 2})"), "/faults/1/call: ", "call"},
        {WithFault(R"({"call": "IMMDevice::GetId", "result": 0})"), "/faults/1/result: ", "failure"},
    };
    const ScratchFolder scratch;
    const std::string path = scratch.Path("machine.json");
    for (const auto& row : rows) {
        WriteBytes(path, row.text);
        const std::string message = MessageOf([&] { (void)machine::ReadMachine(path); });
        SCOPED_TRACE(row.text + "\n" + message);
        EXPECT_EQ(message.rfind(path + ": ", 0), 0u);
        const std::size_t place = message.find(row.place, path.size() + 1);
        ASSERT_NE(place, std::string::npos);
        EXPECT_NE(message.find(row.reason, place + row.place.size()), std::string::npos);
    }
    EXPECT_EQ(MessageOf([&] { (void)machine::ReadMachine(path + "!"); }).rfind(path + "!: ", 0), 0u);
}

TEST(MachineJsonTest, StoresValuesByteForByte)
{
    const struct {
        const char* value;
        DWORD type;
        Bytes data;
    } rows[] = {
        {R"("ab")", REG_SZ, {'a', 0, 'b', 0, 0, 0}},
        {"\"\xc3\xa9\xe2\x82\xac\xf0\x9f\x8e\xa7\"", REG_SZ, {0xe9, 0, 0xac, 0x20, 0x3c, 0xd8, 0xa7, 0xdf, 0, 0}},
        {R"({"type": "REG_SZ", "text": "a", "terminators": 0})", REG_SZ, {'a', 0}},
        {R"({"type": "REG_EXPAND_SZ", "text": "a", "terminators": 3})", REG_EXPAND_SZ, {'a', 0, 0, 0, 0, 0, 0, 0}},
        {R"({"type": "REG_SZ", "text": "a", "extraBytes": "41"})", REG_SZ, {'a', 0, 0, 0, 0x41}},
        {"4278387201", REG_DWORD, {1, 2, 3, 0xff}},
        {R"({"type": "REG_QWORD", "number": 4294967298})", REG_QWORD, {2, 0, 0, 0, 1, 0, 0, 0}},
        {R"({"type": "REG_BINARY", "bytes": "01 02 fF"})", REG_BINARY, {1, 2, 255}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        const auto stored = ParseMachine(WithValue(row.value), "a machine").endpoints.at(0).fxProperties.value();
        ASSERT_EQ(stored.size(), 1u);
        EXPECT_EQ(stored[0].name, L"a/b");
        EXPECT_EQ(stored[0].type, row.type);
        EXPECT_EQ(stored[0].data, row.data);
    }
}

}  // namespace
