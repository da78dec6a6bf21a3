#include "machine/MachineJson.h"

#include "common/ComPtr.h"
#include "fwdiscovery/KsRequest.h"
#include "machine/PlatformCalls.h"
#include "simulation/devices/KsControl.h"
#include "support/Failures.h"
#include "support/Scratch.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <iterator>
#include <memory>
#include <sstream>

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
std::string WithDevice(const std::string& topology, const std::string& filter = "{}", const std::string& more = "")
{
    return Machine(
        "", R"(, "devices": [{"id": "wave", "topology": {)" + topology + R"(}, "filter": )" + filter + "}]" + more);
}

TEST(MachineJsonTest, RefusesWithPlaceAndReason)
{
    const std::string flow = R"("flow": "render")", value = "/endpoints/0/fxProperties/a~1b";
    const std::string parts = R"("parts": [{"id": "00010000"}])", device = "/devices/0/",
                      pins = device + "filter/pins/";
    const std::string kinds = "a text (REG_SZ), a whole number from 0 to 4294967295 (REG_DWORD) or an object";
    const struct {
        std::string text, place, reason;  // a part of the reason, behind the place
    } rows[] = {
        {"{\n\"windowsVersion\": ?}", "line 2", "syntax error"},
        {"", "line 1", "syntax error"},
        {R"({"windowsVersion": "10", "endpoints": []})", "/windowsVersion: ", "major.minor"},
        {Machine("", R"(, "colour": 1)"), "/: ", "colour"},
        {Machine("", R"(, "endpoints": [])"), "/endpoints: ", "twice"},
        {WithDevice(parts, R"({"pins": [{"id": 1}, {"id": 2, "id": 3}]})"), "/devices/0/filter/pins/1/id: ", "twice"},
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
        {WithValue("[1]"), value + ": ", kinds},
        {WithValue("null"), value + ": ", kinds},
        {WithValue(R"({"type": "REG_FULL", "bytes": ""})"), value + "/type: ", R"("REG_EXPAND_SZ")"},
        {WithValue(R"({"type": 1, "text": true})"), value + "/text: ", "a text"},
        {WithValue(R"("x", "A/b": 1)"), "/endpoints/0/fxProperties/A~1b: ", "letter case"},
        {WithValue(R"("x", "\u00e4": 1, "\u00c4": 1)"), "/endpoints/0/fxProperties/\xc3\x84: ", "letter case"},
        {WithDevice(R"("parts": {})"), device + "topology/parts: ", "a list"},
        {WithDevice(R"("parts": [{"id": 65536}])"), device + "topology/parts/0/id: ", "a text"},
        {WithDevice(R"("parts": [{"id": "00010000"}, {"id": "00010000"}])"),
         device + "topology/parts/1/id: ", "earlier part"},
        {WithDevice(R"("parts": [{"id": "00010000", "incoming": ["00010001"]}])"),
         device + "topology/parts/0/incoming/0: ", "no part"},
        {WithDevice(R"("parts": [{"id": "0001000a"}], "signalPaths": [["0001000a", "0001000a"],
                       ["0001000A", "0001000A"]])"),
         device + "topology/signalPaths/1: ", "earlier signal path"},
        {WithDevice(parts, R"({"pins": [{"id": 7}, {"id": 7}]})"), pins + "1/id: ", "earlier pin"},
        {WithDevice(parts, R"({"pins": [{"id": 7, "reply": "", "returnedSize": "all"}]})"),
         pins + "0/returnedSize: ", R"(a whole number or "untouched")"},
        {WithDevice(parts, R"({"pins": [{"id": 7, "returnedSize": "untouched"}]})"), pins + "0: ", R"("reply")"},
        {WithDevice(parts, R"({"audioEngine": [{"node": "00000000", "offloadPin": 1},
                                               {"node": "00000000", "offloadPin": 2}]})"),
         device + "filter/audioEngine/1/node: ", "earlier audio engine node"},
        {WithFault(R"({"call": "RegOpenKey", "result": 2})"), "/faults/1/call: ", "IMMDevice::GetId, "},
        {WithFault(R"({"call": "RegOpenKeyW", "result": 5})"), "/faults/1: ", "earlier fault"},
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
    for (const std::string& unreadable : {path + "!", scratch.Folder().string()})
        EXPECT_EQ(MessageOf([&] { (void)machine::ReadMachine(unreadable); }), unreadable + ": cannot be read");
}

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

TEST(MachineJsonTest, TellsAllMistakesOfAFile)
{
    const std::string text = R"({
        "windowsVersion": 10,
        "endpoints": [
            {"guid": "{0A000000-0000-4000-8000-0000000000FF}", "flow": "both", "friendlyName": null,
             "fxProperties": {"a": [], "b": "", "c": -1}},
            7
        ],
        "devices": [
            {"id": "wave", "topology": {"parts": [{"id": "00010000", "connector": "softwareIO"}]},
             "filter": {"pins": [{"id": 1}, {"id": 1, "modules": [{"type": "SFX"}]}]}},
            {"id": "wave", "topology": {}, "colour": 1}
        ],
        "faults": [{"call": "Nothing", "result": 2}, {"call": "IMMDevice::GetId", "result": 0}]
    })";
    const std::string places[] = {
        "/windowsVersion",
        "/endpoints/0/flow",
        "/endpoints/0/friendlyName",
        "/endpoints/0/fxProperties/a",
        "/endpoints/0/fxProperties/c",
        "/endpoints/1",
        "/devices/0/filter/pins/1/id",
        "/devices/0/filter/pins/1/modules/0/type",
        "/devices/0/filter/pins/1/modules/0",  // lacks its GUID
        "/devices/1",                          // the colour
        "/devices/1/id",
        "/devices/1/topology",  // lacks its parts
        "/faults/0/call",
        "/faults/1/result",
    };
    const std::vector<std::string> lines = Lines(MessageOf([&] { (void)ParseMachine(text, "m"); }));
    ASSERT_EQ(lines.size(), std::size(places)) << testing::PrintToString(lines);
    for (std::size_t index = 0; index < lines.size(); ++index)
        EXPECT_EQ(lines[index].rfind("m: " + places[index] + ": ", 0), 0u) << lines[index];
}

TEST(MachineJsonTest, TellsNoMistakeThatFollowsFromAnother)
{
    const std::string part =
        R"({"id": "1000", "connector": "softwareIO"}, {"id": "00010001", "incoming": ["00001000"]})";
    const std::string endpoint = Endpoint(R"("flow": "render", "topology": {"parts": [{"id": "00010000",
        "connector": "physicalExternal", "connectedTo": {"device": "wave", "part": "00001000"}}]})");
    const std::string more =
        R"(, "devices": [{"id": "wave", "topology": {"parts": [)" + part +
        R"(]}}], "faults": [{"call": "IPart::GetLocalId", "object": "wave/00001000", "result": -1}])";
    EXPECT_EQ(MessageOf([&] { (void)ParseMachine(Machine(endpoint, more), "m"); }),
              "m: /devices/0/topology/parts/0/id: must be a text: a local id in eight hexadecimal digits");
}

TEST(MachineJsonTest, FaultsNameObjectsThatTheirCallIsMadeOn)
{
    struct Row {
        const char* call;
        std::vector<std::string> right, wrong;
    };
    std::vector<Row> rows = {
        {"CoCreateInstance", {}, {"wave"}},
        {"IMMDeviceCollection::GetCount", {}, {"speakers"}},
        {"IMMDeviceEnumerator::GetDevice", {"speakers", "wave"}, {"", "phones", "wave/00010000"}},
        {"IMMEndpoint::GetDataFlow", {"speakers"}, {"wave", "topo"}},
        {"IPropertyStore::GetValue", {"speakers"}, {"wave"}},
        {"IKsControl::KsProperty", {"wave"}, {"speakers", "topo"}},
        {"IDeviceTopology::GetConnector", {"speakers", "topo"}, {"topo/00010000"}},
        {"IPart::GetPartType", {"wave/00010000", "wave/00020000"}, {"wave", "wave/00010001", "topo/00020000"}},
        {"IPartsList::GetCount", {"wave", "wave/00020000"}, {"wave/00020009"}},
        {"IConnector::IsConnected", {"speakers/00000000"}, {"wave/00020000"}},
        {"IAudioInputSelector::SetSelection", {"wave/00020000"}, {"wave/00020001", "wave/00010000"}},
        {"IAudioOutputSelector::SetSelection", {"wave/00020001"}, {"wave/00020000"}},
    };
    const std::string render = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\MMDevices\Audio\Render)";
    const std::string speakers = render + R"(\{0A000000-0000-4000-8000-0000000000FF}\)";
    rows.push_back({"RegQueryValueExW",
                    {render, speakers + "Properties", speakers + "FxProperties"},
                    {"speakers", render + "\\", speakers, speakers + "Others"}});
    for (const auto& row : rows) {
        const int code = machine::FindPlatformCall(row.call)->CanGive(5) ? 5 : -1;
        const auto parse = [&](const std::string& object) {
            const std::string devices = R"(, "devices": [{"id": "topo", "topology": {"parts": [{"id": "00010000"}]}},
                {"id": "wave", "filter": {}, "topology": {"parts": [{"id": "00010000", "connector": "softwareIO"},
                    {"id": "00020000", "selector": "input"}, {"id": "00020001", "selector": "output"}]}}])";
            const std::string fault = nlohmann::json{{"call", row.call}, {"object", object}, {"result", code}}.dump();
            return ParseMachine(Machine(Endpoint(R"("flow": "render", "deviceId": "speakers")"),
                                        devices + R"(, "faults": [)" + fault + "]"),
                                "m");
        };
        for (const std::string& object : row.right)
            EXPECT_EQ(parse(object).faults.at(0).object, object) << row.call;
        for (const std::string& object : row.wrong) {
            const std::string message = MessageOf([&] { (void)parse(object); });
            EXPECT_EQ(message.rfind("m: /faults/0/object: ", 0), 0u) << row.call << " " << object << ": " << message;
        }
    }
}

TEST(MachineJsonTest, SchemaAllowsTheCallsThatCanFail)
{
    std::vector<std::string> calls;
    for (const machine::PlatformCall& call : machine::PlatformCalls())
        calls.emplace_back(call.name);
    const auto schema = nlohmann::json::parse(ReadBytes(QOVXML_EXAMPLES "/../machine/machine.schema.json"));
    EXPECT_EQ(schema.at("/$defs/fault/properties/call/enum"_json_pointer).get<std::vector<std::string>>(), calls);
}

TEST(MachineJsonTest, APinCanLeaveTheReturnedSizeAlone)
{
    const struct {
        const char* size;
        ULONG returned;
    } rows[] = {{"", 8}, {R"(, "returnedSize": 5)", 5}, {R"(, "returnedSize": "untouched")", 77}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.size);
        const std::string pin = std::string(R"({"id": 5, "modules": [])") + row.size + "}";
        const auto machine = std::make_shared<simulation::MachineState>(
            ParseMachine(WithDevice(R"("parts": [])", R"({"pins": [)" + pin + "]}"), "m"));
        qov::ComPtr<IKsControl> control;
        *control.Put() = simulation::MakeKsControl(machine, machine->description.devices[0]);
        qov::KsRequest<sizeof(GUID)> request(
            {0xbae9ce37, 0xaa99, 0x4bc7, {0x9b, 0xdf, 0x4c, 0xbf, 0x3d, 0x23, 0xe1, 0xb9}}, 1, qov::KsFlagGet, 5);
        request.SetExtra({0xc18e2f7e, 0x933d, 0x4965, {0xb7, 0xd1, 0x1e, 0xef, 0x22, 0x8d, 0x2a, 0xf3}});
        ULONG returned = 77;
        Bytes reply(8, 0xFF);
        EXPECT_EQ(control->KsProperty(request.Property(), request.Size(), reply.data(), 8, &returned), S_OK);
        EXPECT_EQ(returned, row.returned);
        EXPECT_EQ(reply, (Bytes{8, 0, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(control->KsProperty(request.Property(), request.Size(), nullptr, 0, &returned), S_OK);
        EXPECT_EQ(returned, 8u);
    }
}

}  // namespace
