// What is read from the messages of a run, and what people are told of it.
#include "host/review/Findings.h"
#include "host/review/Report.h"
#include "host/review/Warnings.h"

#include "support/Outcomes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace host;

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

}  // namespace
