// What is read from one rehearsal.
#include "host/review/Advice.h"
#include "host/review/Findings.h"
#include "host/review/OutcomeChecks.h"
#include "host/review/Report.h"
#include "host/review/ShownText.h"
#include "host/review/Warnings.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace {

using namespace host;

rehearsal::Outcome OutcomeOf(const std::vector<std::wstring>& messages)
{
    rehearsal::Outcome outcome;
    for (const std::wstring& message : messages)
        outcome.events.push_back(rehearsal::LogMessage{LogLevel::Info, message});
    const std::string names = "OrvexZan_Lfx_Mfx_Apo OrvexZan_Sfx_Apo OrvexZan_Efx_Apo OrvexZan_SPATIALF";
    const std::string bytes = "<a b=\"" + names + "\"/>\r\n";
    outcome.files = {{{"q.xml", bytes, bytes}, {"s.xml", bytes, bytes}, {"p.xml", bytes, bytes}}};
    return outcome;
}

constexpr wchar_t ReportHead[] =
    L"\n=======================================\nDiscovered audio modules: \n=======================================\n";

std::wstring ModuleLines(int number, const wchar_t* guid, const wchar_t* deviceId, const wchar_t* place)
{
    return L"Module #" + std::to_wstring(number) + L": \n* Module GUID: " + guid + L"\n* DeviceId: " + deviceId +
           L"\n* EndpointName: espeaker\n* Audio Endpoint GUID: {e5a0c9d2-6f34-4b18-9a7d-02c4f8b1637e}\n* Location: " +
           place + L"\n";
}
constexpr wchar_t MfxGuid[] = L"{7ba4ceb1-0a15-4ae4-b090-461d48fb641c}";
constexpr wchar_t SpatialfGuid[] = L"{7c708106-3aff-40fe-88be-8c999b3f7445}";
constexpr wchar_t OtherGuid[] = L"{fb98a665-9f8c-45df-a428-b6cd48e8ddb3}";

std::wstring Counts(const wchar_t* spatialf, const wchar_t* mfx)
{
    return L"Found Orvex SPATIALF FW modules count: " + std::wstring(spatialf) +
           L"\nFound Orvex ZAN APO modules count: \n* LFX (Windows 8.0 & lower): 0\n* EFX (Windows 8.1 & later): 0\n"
           L"* MFX (Windows 8.1 & later): " +
           mfx + L"\n* SFX (Windows 8.1 & later): 0\n";
}

// A run that ends in the pipelines file, on a machine that puts line feeds into its texts.
std::vector<std::wstring> HostileRun()
{
    return {
        L"Devices count:2",
        L"Endpoint #0: \"Speak(ers)\x1b[2J\n--- q.xml({0.0.0.00000000}.{e5a0c9d2})",
        L"GUID #0: {E5A0C9D2-6F34-4B18-9A7D-02C4F8B1637E}",
        ReportHead +
            ModuleLines(0, SpatialfGuid, L"func\n* Type: SFX\nModule #1: \n",
                        L"FW\n* Level: Not wrapped\n* Type: MFX") +
            L"* Flow: Render\n* Property pin ID: 4294967295\n" +
            ModuleLines(1, MfxGuid, L"", L"APO\n* Level: Wrapped\n* Type: EFX\n* Flow: Render") +
            ModuleLines(2, OtherGuid, L"x", L"APO\n* Level: Not wrapped\n* Type: SFX\n* Flow: Render") +
            L"\nDiscovered FW audio module(s) count: 1\nDiscovered APO audio module(s) count: 2\n\n",
        Counts(L"1", L"1"),
        L"Detected Windows 8.1 or greater",
        L"Reading QOV configuration from: q.xml...",
        L"DeviceId: func\nb\xe9",
        L"EndpointName: espeaker",
        L"Configuring Orvex ZAN APO sections...",
        L"-LFX/MFX",
        L"-SFX",
        L"+EFX",
        L"Configuring Orvex FW SPATIALF sections...",
        L"+MFX",
        L"Reading QOV settings from: s.xml...",
        L"-LFX/MFX",
        L"-SFX",
        L"+EFX",
        L"+MFX",
        L"Setting up APO pipelines definition file...",
        L"Reading APO pipelines definition from: p.xml...",
        L"APO GUID: {7ba4ceb1}",
        L"DEFAULT Mode ParamId: \r\nSPEECH Mode ParamId: {6696}:7",
    };
}

TEST(FindingsTest, AreReadFromTheMessages)
{
    rehearsal::Outcome outcome = OutcomeOf(HostileRun());
    outcome.files[SettingsFile].before = "OrvexZan_Lfx_Mfx_Apo OrvexZan_Sfx_Ap";
    const Findings findings = ReadFindings(outcome);
    EXPECT_EQ(findings.deviceCount, 2U);
    EXPECT_EQ(findings.makersModules, 2U);
    EXPECT_EQ(findings.generation, WindowsGeneration::Windows8Point1OrGreater);
    EXPECT_EQ(findings.fileUnderEdit, PipelinesFile);
    EXPECT_TRUE(findings.pipelinesWanted);

    std::string modules;
    for (const FoundModule& module : findings.modules)
        modules += module.makersName + "|" + module.deviceId + "|" + module.location + "|" + module.level + "|" +
                   module.type + "|" + module.flow + "|" + module.endpointName + "|" + module.friendlyName + "\n";
    const std::string endpoint = "|Render|espeaker|Speak(ers)\x1b[2J\n--- q.xml\n";
    EXPECT_EQ(modules, "SPATIALF|func\n* Type: SFX\nModule #1: \n|FW|Not wrapped|MFX" + endpoint +
                           "ZAN APO MFX||APO|Wrapped|EFX" + endpoint + "|x|APO|Not wrapped|SFX" + endpoint);

    std::string blocks;
    for (const BlockState& block : findings.blocks)
        blocks +=
            std::to_string(block.file) + block.name.substr(9) + (block.on ? "+" : "-") + (block.present ? " " : "? ");
    EXPECT_EQ(blocks, "0Lfx_Mfx_Apo- 0Sfx_Apo- 0Efx_Apo+ 0SPATIALF+ 1Lfx_Mfx_Apo- 1Sfx_Apo-? 1Efx_Apo+? 1SPATIALF+? ");

    std::string values;
    for (const ValueSet& value : findings.values)
        values += std::to_string(value.file) + value.name + "=" + value.value + ";";
    EXPECT_EQ(values,
              "0DeviceId=func\nb\xe9;0EndpointName=espeaker;2ModuleGuid={7ba4ceb1};2ParamId (DEFAULT mode)=;"
              "2ParamId (SPEECH mode)={6696}:7;");
}

TEST(FindingsTest, OfARunThatEndedEarly)
{
    const Findings none = ReadFindings(OutcomeOf({L"QovXml: ConfigureQovXmls() starting...", L"+SFX", L"DeviceId: x"}));
    EXPECT_FALSE(none.deviceCount || none.makersModules || none.fileUnderEdit || none.pipelinesWanted);
    EXPECT_TRUE(none.modules.empty() && none.blocks.empty() && none.values.empty());

    // Reports that break off anywhere, and endpoints that make no sense.
    const std::wstring whole = HostileRun()[3];
    for (std::size_t size = 0; size <= whole.size(); ++size)
        EXPECT_LE(ReadFindings(OutcomeOf({L"Endpoint #", L"GUID #", whole.substr(0, size)})).modules.size(), 3U);
}

TEST(WarningsTest, OfTheMachineAndTheFiles)
{
    const std::wstring reading = L"Reading QOV configuration from: q.xml...";
    const std::wstring newer =
        ReportHead + ModuleLines(0, OtherGuid, L"", L"APO\n* Level: Not wrapped\n* Type: SFX\n* Flow: Render");
    const std::wstring older =
        ReportHead + ModuleLines(0, OtherGuid, L"", L"APO\n* Level: Not wrapped\n* Type: GFX\n* Flow: Render");
    const struct {
        const char* name;
        std::vector<std::wstring> messages;
        std::string before;
        std::string after;
        std::vector<std::string> starts;
    } rows[] = {
        {"nothing", {L"Devices count:10", Counts(L"0", L"1"), reading}, "<a/>\r\n", "<b/>\r\n", {}},
        {"no endpoint", {L"Devices count:0"}, "", "", {"No audio endpoint is active"}},
        {"no module", {Counts(L"0", L"0")}, "", "", {"No Orvex module was found"}},
        {"newer effects", {newer, L"Detected Windows 8.0 or lower"}, "", "", {"Effects for Windows 8.1"}},
        {"newer Windows", {newer, L"Detected Windows 8.1 or greater"}, "", "", {}},
        {"older effects", {older, L"Detected Windows 8.0 or lower"}, "", "", {}},
        {"line ends", {reading}, "<a>\r\n\n</a>", "<a>\r\n\r\n</a>\r\n", {"The line ends of q.xml change"}},
        {"line ends stay", {reading}, "<a>\n</a>", "<a>\n</a>", {}},
        {"malformed", {reading}, "<a>\r\n</b>", "<a>", {"The file q.xml is not well-formed XML: line 2: "}},
        {"malformed, not read", {}, "<a>\r\n</b>", "<a>", {}},
        {"name missing",
         {reading, L"-LFX/MFX", L"+SFX"},
         "<OrvexZan_Lfx_Mfx_Apo/>",
         "<OrvexZan_Lfx_Mfx_Apo/>",
         {"The section name \"OrvexZan_Sfx_Apo\" occurs nowhere in q.xml"}},
    };
    for (const auto& row : rows) {
        rehearsal::Outcome outcome = OutcomeOf(row.messages);
        outcome.files[ConfigurationFile] = {"q.xml", row.before, row.after};
        const std::vector<std::string> warnings = Warnings(outcome, ReadFindings(outcome));
        ASSERT_EQ(warnings.size(), row.starts.size()) << row.name << ": " << (warnings.empty() ? "" : warnings[0]);
        for (std::size_t index = 0; index < warnings.size(); ++index)
            EXPECT_TRUE(warnings[index].starts_with(row.starts[index])) << row.name << ": " << warnings[index];
    }
}

TEST(OutcomeChecksTest, HoldAgainstWhatEveryRunKeeps)
{
    const std::wstring reading = L"Reading QOV configuration from: q.xml...";
    const std::wstring device = L"DeviceId: n\"1";
    const struct {
        const char* name;
        std::vector<std::wstring> messages;
        std::string before;
        std::string after;
        std::string problem;  // a part of it; empty: none
    } rows[] = {
        {"blocks", {reading}, "<a>\n<b>\n</b>\n<!--<c/>-->\n</a>", "<a>\r\n<!--<b>\r\n</b>-->\r\n<c/>\r\n</a>\r\n", ""},
        {"a value", {reading, device}, "<a b='DeviceId:o\"'/>\n", "<a b='DeviceId:n\"1\"'/>\r\n", ""},
        {"value and block",
         {reading, device},
         "<a>\n<b c='DeviceId:\"'/>\n</a>\n",
         "<a>\r\n<!--<b c='DeviceId:n\"1\"'/>-->\r\n</a>\r\n",
         ""},
        {"a value with line feeds",
         {reading, L"EndpointName: 1\n2\r\n3"},
         "<a>\n<b c='EndpointName:o\"'/>\n</a>\n",
         "<a>\r\n<b c='EndpointName:1\r\n2\r\r\n3\"'/>\r\n</a>\r\n",
         ""},
        {"another value",
         {reading, device},
         "<a b='DeviceId:o\"'/>\n",
         "<a b='DeviceId:x\"'/>\r\n",
         "q.xml: line 1 would change"},
        {"another file's value",
         {reading, device, L"Reading QOV settings from: s.xml...", L"EndpointName: x"},
         "<a b='EndpointName:\"'/>\n",
         "<a b='EndpointName:x\"'/>\r\n",
         "q.xml: line 1 would change"},
        {"another line", {reading}, "<a>\n1\n</a>\n", "<a>\r\n2\r\n</a>\r\n", "q.xml: line 2 would change"},
        {"a line more", {reading}, "<a/>\n", "<a/>\r\n\r\n", "more lines"},
        {"cut between lines", {reading}, "<a>\n</a>\n", "<a>\r\n", "cut short at line 1"},
        {"cut within a line", {reading}, "<a>\n</a>\n", "<a>\r\n</", "cut short at line 2"},
        {"cut within a line end", {reading}, "<a>\n</a>\n", "<a>\r\n</a>\r", "cut short at line 2"},
        {"cut to nothing", {reading}, "<a/>\n", "", "cut short at line 0"},
        {"a comment in a comment",
         {reading},
         "<a>\n<b>--\n</b>\n</a>\n",
         "<a>\r\n<!--<b>--\r\n</b>-->\r\n</a>\r\n",
         "q.xml: it would not be well-formed XML any more: line 2: "},
        {"malformed before", {reading}, "<a>\n<b>--\n</b>\n", "<a>\r\n<!--<b>--\r\n</b>-->\r\n", ""},
    };
    for (const auto& row : rows) {
        rehearsal::Outcome outcome = OutcomeOf(row.messages);
        outcome.files[ConfigurationFile] = {"q.xml", row.before, row.after};
        const std::string problem = OutcomeProblem(outcome, ReadFindings(outcome)).value_or("");
        EXPECT_EQ(problem.empty(), row.problem.empty()) << row.name << ": " << problem;
        EXPECT_NE(problem.find(row.problem), std::string::npos) << row.name << ": " << problem;
    }
}

TEST(OutcomeChecksTest, AFailureNamesTheFileAndWhatToDo)
{
    rehearsal::Outcome outcome =
        OutcomeOf({L"Reading QOV configuration from: q.xml...", L"Reading QOV settings from: s.xml..."});
    outcome.files[SettingsFile].path = "s\x1b.xml";
    outcome.failure = "Cannot disable block \"a*\nb\": line 7 holds a comment marker";
    EXPECT_EQ(FailureText(outcome, ReadFindings(outcome)),
              "s\\x1B.xml: Cannot disable block \"a*\\x0Ab\": line 7 holds a comment marker. What to do: " +
                  std::string(WhatToDo(*outcome.failure)));
    outcome.events.clear();
    outcome.failure = "Invalid SPATIALF modules configuration.";
    EXPECT_TRUE(FailureText(outcome, ReadFindings(outcome))
                    .starts_with("Invalid SPATIALF modules configuration. What to do: "));
}

TEST(AdviceTest, FitsMessagesWhateverVaries)
{
    const auto fits = [](std::string_view message, std::string_view row) {
        for (const Advice& advice : AllAdvice())
            if (advice.message == row)
                return WhatToDo(message) == advice.whatToDo;
        return false;
    };
    EXPECT_TRUE(fits("File \"a \"b\" not found.\" not found.", "File \"*\" not found."));
    EXPECT_TRUE(fits("Cannot enable block \"OrvexZan_SPATIALF\": line 12 does not end with \"-->\"",
                     "Cannot * block \"*\": line * does not end with \"-->\""));
    EXPECT_TRUE(fits("Invalid number of installed Orvex ZAN APOs in EFX mode: 2",
                     "Invalid number of installed Orvex ZAN APOs in * mode: "));
    EXPECT_TRUE(fits("GetConnector failed! Result: 0x80070490", "GetConnector failed! Result: 0x"));
    EXPECT_FALSE(fits("Cannot enable block \"x\"", "Cannot * block \"*\": line * does not end with \"-->\""));
    EXPECT_NE(WhatToDo("anything else"), "");
}

TEST(ShownTextTest, IsHarmlessAndWellFormed)
{
    const struct {
        std::string bytes, utf8, harmless;
    } rows[] = {
        {"plain \xC3\xA9\xF0\x9F\x98\x80", "plain \xC3\xA9\xF0\x9F\x98\x80", "plain \xC3\xA9\xF0\x9F\x98\x80"},
        {"\x1b[2J\r\n\t\x7f", "\x1b[2J\r\n\t\x7f", "\\x1B[2J\\x0D\\x0A\\x09\\x7F"},
        {"\xC2\x9B\xE2\x80\xAE", "\xC2\x9B\xE2\x80\xAE", "\\xC2\\x9B\\xE2\\x80\\xAE"},
        {"\xE9", "\xEF\xBF\xBD", "\xEF\xBF\xBD"},
        {"\xC0\xAF"
         "a\xED\xA0\x80",
         "\xEF\xBF\xBD\xEF\xBF\xBD"
         "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD",
         "\xEF\xBF\xBD\xEF\xBF\xBD"
         "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xF4\x90\x80\x80\xC3", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD",
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Utf8(row.bytes), row.utf8);
        EXPECT_EQ(Harmless(row.bytes), row.harmless);
    }
    EXPECT_EQ(HarmlessLines("a\r\n\n\x07\r"), "a\n\n\\x07\\x0D");
    EXPECT_EQ(LogText(L"Reading QOV settings from: \xc3\xa9\xff..."),
              "Reading QOV settings from: \xC3\xA9\xEF\xBF\xBD...");
    EXPECT_EQ(LogText(L"DeviceId: \xe9"), "DeviceId: \xC3\xA9");
}

TEST(SummaryTest, ShowsWhatWasFoundAndDone)
{
    const rehearsal::Outcome outcome = OutcomeOf(HostileRun());
    Findings findings = ReadFindings(outcome);
    findings.modules[0].friendlyName = "Lautsprecher \xC3\xBC";
    findings.blocks[5].present = false;
    Report report{"done", {}, {"No audio endpoint"}, FileReports(outcome), {}, {}};
    report.files[0] = {"q\n.xml", true, "q.bak", {{1, "a", "b"}}};
    EXPECT_EQ(Summary(report, findings),
              "Machine: Windows 8.1 or later, 2 active endpoints, 3 audio modules, 2 of them by Orvex\n"
              "Modules by Orvex:\n"
              "  SPATIALF     firmware, MFX        on Lautsprecher \xC3\xBC\n"
              "  ZAN APO MFX  EFX effect, wrapped  on Speak(ers)\\x1B[2J\\x0A--- q.xml\n"
              "Sections and domains:\n"
              "                        section  domain\n"
              "  OrvexZan_Lfx_Mfx_Apo  off      off\n"
              "  OrvexZan_Sfx_Apo      off      missing\n"
              "  OrvexZan_Efx_Apo      on       on\n"
              "  OrvexZan_SPATIALF     on       on\n"
              "Values:\n"
              "  DeviceId                func\\x0Ab\xEF\xBF\xBD\n"
              "  EndpointName            espeaker\n"
              "  ModuleGuid              {7ba4ceb1}\n"
              "  ParamId (DEFAULT mode)\n"
              "  ParamId (SPEECH mode)   {6696}:7\n"
              "Files:\n"
              "  changed    1 line  q\\x0A.xml, backup q.bak\n"
              "  unchanged          s.xml\n"
              "  unchanged          p.xml\n"
              "Warnings:\n"
              "  No audio endpoint\n");
    report = {"unchanged", {}, {}, FileReports(outcome), {}, {}};
    EXPECT_NE(Summary(report, findings).find("Nothing to change:\n  unchanged    q.xml\n"), std::string::npos);
}

TEST(OutcomeJsonTest, HoldsEverythingInItsOrder)
{
    rehearsal::Outcome outcome = OutcomeOf({});
    outcome.files[SettingsFile] = {"s\xE9", "a\nb\xE9\x1b\n", "a\r\nc\r\n"};
    Report report{
        "would-change", {}, {"w"}, FileReports(outcome), {{LogLevel::Warning, L"l\xe9"}, {LogLevel::Info, L"i"}}, {}};
    report.files[0].backup = "q.bak";
    EXPECT_EQ(OutcomeJson(report).dump(),
              R"({"outcome":"would-change","message":null,"warnings":["w"],"files":[)"
              R"({"path":"q.xml","changed":false,"backup":"q.bak","lines":[]},)"
              "{\"path\":\"s\xEF\xBF\xBD\",\"changed\":true,\"backup\":null,\"lines\":[{\"line\":2,"
              "\"before\":\"b\xEF\xBF\xBD\\u001b\",\"after\":\"c\"}]},"
              R"({"path":"p.xml","changed":false,"backup":null,"lines":[]}],)"
              "\"log\":[{\"level\":\"warning\",\"text\":\"l\xC3\xA9\"},{\"level\":\"info\",\"text\":\"i\"}]}");
    report.message = "m";
    report.diff = Diff(outcome);
    const auto object = OutcomeJson(report);
    EXPECT_EQ(object["message"], "m");
    EXPECT_EQ(object["diff"], "--- \"s\\351\"\n+++ \"s\\351\"\n@@ -1,2 +1,2 @@\n-a\n-b\xEF\xBF\xBD\x1b\n+a\r\n+c\r\n");
    // Of a run that failed nothing would change, whatever its copies hold.
    outcome.failure = "f";
    EXPECT_EQ(Diff(outcome), "");
    EXPECT_FALSE(FileReports(outcome)[1].changed);
}

}  // namespace
