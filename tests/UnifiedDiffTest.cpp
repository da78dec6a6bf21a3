#include "host/review/LineChanges.h"
#include "host/review/Report.h"
#include "host/review/UnifiedDiff.h"

#include "support/Scratch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

using namespace host;

std::string Numbered(int count, const std::string& end = "\n")
{
    std::string text;
    for (int line = 1; line <= count; ++line)
        text += std::to_string(line) + end;
    return text;
}

std::string With(std::string text, const std::string& from, const std::string& to)
{
    return text.replace(text.find(from), from.size(), to);
}

TEST(UnifiedDiffTest, SaysWhatChangesWithItsContext)
{
    const std::string before = "1\r\n2\r\n3\r\n4\r\n5\n6\r\n7\r\n8\r\n9\r\n10\r\n11\r\n12\r\n13";
    const std::string after = With(With(before, "5\n", "5\r\n"), "13", "13\r\n");
    EXPECT_EQ(UnifiedDiff("a/b.xml", before, after),
              "--- a/b.xml\n+++ a/b.xml\n"
              "@@ -2,7 +2,7 @@\n 2\r\n 3\r\n 4\r\n-5\n+5\r\n 6\r\n 7\r\n 8\r\n"
              "@@ -10,4 +10,4 @@\n 10\r\n 11\r\n 12\r\n-13\n\\ No newline at end of file\n+13\r\n");
    EXPECT_EQ(UnifiedDiff("a", before, before), "");
}

// Line N stays line N, however alike other lines are; contexts that touch make one hunk.
TEST(UnifiedDiffTest, LooksForNoLikeness)
{
    EXPECT_EQ(UnifiedDiff("f", "a\nb\nc\n", "b\nc\nd\n"), "--- f\n+++ f\n@@ -1,3 +1,3 @@\n-a\n-b\n-c\n+b\n+c\n+d\n");
    EXPECT_EQ(UnifiedDiff("f", Numbered(9), With(With(Numbered(9), "1\n", "x\n"), "8\n", "y\n")),
              "--- f\n+++ f\n@@ -1,9 +1,9 @@\n-1\n+x\n 2\n 3\n 4\n 5\n 6\n 7\n-8\n+y\n 9\n");
    EXPECT_EQ(UnifiedDiff("f", Numbered(9), With(With(Numbered(9), "1\n", "x\n"), "9\n", "y\n")),
              "--- f\n+++ f\n@@ -1,4 +1,4 @@\n-1\n+x\n 2\n 3\n 4\n@@ -6,4 +6,4 @@\n 6\n 7\n 8\n-9\n+y\n");
}

// As `patch` applies it, between lines of a summary that does its worst to be taken for a diff.
TEST(UnifiedDiffStandInTest, PatchMakesTheNewBytes)
{
    const struct {
        const char* name;
        std::string before;
        std::string after;
    } rows[] = {
        {"plain.xml", Numbered(30), With(With(Numbered(30), "\n5\n", "\nfive\n"), "30\n", "thirty\n")},
        {"to CR LF.xml", Numbered(9), Numbered(9, "\r\n")},
        {"bare carriage returns", "a\rb\r\nc\r\r\n\r", "a\rb\r\nd\r\r\n\r\r\n"},
        {"no last line feed", "a\nb", "a\r\nb\r\n"},
        {"one byte", "a", "b"},
        {"more lines", Numbered(20), With(Numbered(20), "\n9\n", "\nnine\r\n9\r\n")},
        {"emptied", "a\nb\n", ""},
        {"filled", "", "a\r\nb"},
        {"headers in it", "--- x\n+++ y\n@@ -1 +1 @@\n*** z\n", "--- x\n+++ z\n@@ -1 +1 @@\n*** z\n"},
        {"bytes", "\xff\xfe\x01\x1b[0m\n\xe9\n", "\xff\xfe\x01\x1b[1m\n\xea\n"},
        {" blanks\tand \"quotes\"'\\ ", "a\n", "b\n"},
        {"\xC3\xA9\xE4\xB8\xAD.xml", "a\n", "b\n"},
        {"not\xE9UTF-8", "a\n", "b\n"},
        {"line\nfeed\r\x1b[31m\x7f", "a\n", "b\n"},
        {"-r", "a\n", "b\n"},
    };
    const ScratchFolder scratch;
    std::string diffs;
    for (const auto& row : rows) {
        WriteBytes(scratch.Folder() / row.name, row.before);
        diffs += UnifiedDiff(row.name, row.before, row.after);
    }

    Findings findings;
    findings.modules = {
        {"SPATIALF", "g", "d", "e", "g", "x\n--- plain.xml\n+++ plain.xml\n@@ -1 +1 @@\n-1\n+7", {}, {}, {}, {}}};
    findings.values = {{PipelinesFile, "DeviceId", "", "", "\nIndex: plain.xml\r\n1c\n0\n.\n"}};
    Report report;
    report.warnings = {"*** plain.xml\n--- plain.xml\n"};
    report.files = {{"--- plain.xml", true, "+++ plain.xml", {}}};
    const std::string summary = Summary(report, findings);
    WriteBytes(scratch.Folder() / "all.diff", summary + diffs + summary);
    const std::string command =
        "cd '" + scratch.Folder().string() + "' && patch -p0 --binary --fuzz=0 --batch < all.diff > patch.log 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << ReadBytes(scratch.Folder() / "patch.log");
    for (const auto& row : rows)
        EXPECT_EQ(ReadBytes(scratch.Folder() / row.name), row.after) << row.name;
}

TEST(LineChangesTest, CountsLinesOfTheOriginalAndLeavesTheirEndsAside)
{
    const auto text = [](const std::string& before, const std::string& after) {
        std::string changes;
        for (const LineChange& change : LineChanges(before, after))
            changes += std::to_string(change.line) + ":" + change.before + ">" + change.after + ";";
        return changes;
    };
    EXPECT_EQ(text("a\nb", "a\r\nb\r\n"), "");
    EXPECT_EQ(text("a\nb\nc\n", "x\r\nb\r\ny\r\n"), "1:a>x;3:c>y;");
    EXPECT_EQ(text("a\r\nb\r\r\nc\r", "a\r\nB\r\r\nc\r\r\n"), "2:b\r>B\r;");  // only one goes with the line feed
    EXPECT_EQ(text("a\nb\nc\nd\n", "a\r\nB\r\nb\r\nC\r\nd\r\n"), "2:b\nc>B\nb\nC;");
    EXPECT_EQ(text("a\na\n", "a\r\na\r\na\r\n"), "3:>a;");
}

}  // namespace
