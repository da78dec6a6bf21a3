// What a run came to, judged and told.
#include "host/review/Advice.h"
#include "host/review/OutcomeChecks.h"
#include "host/review/Report.h"
#include "host/review/ShownText.h"

#include "support/Outcomes.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace {

using namespace host;

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
