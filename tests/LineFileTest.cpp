#include "xmledit/LineFile.h"

#include "support/Failures.h"
#include "support/LineTexts.h"
#include "support/Scratch.h"
#include "support/UnwritableFile.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using namespace qov;

TEST(LineFileTest, ReadsLinesAndWritesThemBackWithCrLf)
{
    const std::string odd("\xef\xbb\xbf<x>\0\t \x80\xff\x0b ", 13);  // a byte-order mark and more
    const std::string rows[][3] = {{"", "", ""},
                                   {"\n", "|", "\r\n"},
                                   {"a\nb", "a|b|", "a\r\nb\r\n"},
                                   {"a\r\nb\nc\r\n", "a|b|c|", "a\r\nb\r\nc\r\n"},
                                   {"\r\n\na\n\n", "||a||", "\r\n\r\na\r\n\r\n"},
                                   {"\ra\rb\n\rc\r", "\ra\rb|\rc\r|", "\ra\rb\r\n\rc\r\r\n"},
                                   {"a\r\r\nb", "a\r|b|", "a\r\r\nb\r\n"},
                                   {odd + "\n", odd + "|", odd + "\r\n"},
                                   {"a\x1a\nb\n\x1a", "a\x1a|b|\x1a|", "a\x1a\r\nb\r\n\x1a\r\n"}};
    const ScratchFolder scratch;
    const std::string path = scratch.Path("file.xml");
    for (const auto& [bytes, lines, rewritten] : rows) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        WriteBytes(path, bytes);
        LineFile read = ReadLineFile(path);
        EXPECT_EQ(TextOf(read), lines);
        WriteLineFile(std::move(read), path);
        EXPECT_EQ(ReadBytes(path), rewritten);
    }
}

TEST(LineFileTest, WritesTheWholeFileAnew)
{
    const ScratchFolder scratch;
    const std::string path = scratch.Path("new file.xml");
    WriteLineFile(LinesOf("much longer than what follows"), path);
    EXPECT_EQ(ReadBytes(path), "much longer than what follows\r\n");
    // Other users of the file are no hindrance where the system knows exclusive use, as Windows does.
    const std::fstream otherUser(path, std::ios::in | std::ios::out | std::ios::binary);
    LineFile lines = LinesOf("||x|");
    for (std::size_t line = 0; const char* const text : {"a\nb", "c\r\nd", "\n"}) {
        lines.Edit(line) = text;
        line = lines.Next(line);
    }
    WriteLineFile(lines, path);
    EXPECT_EQ(ReadBytes(path), "a\r\nb\r\nc\r\r\nd\r\n\r\n\r\n");
}

TEST(LineFileTest, HoldsMoreThanIsReadAtOnce)
{
    std::string bytes, rewritten;
    for (int line = 0; line < 100'000; ++line) {
        const std::string text = line == 5 ? std::string(300'000, 'x') : "line " + std::to_string(line);
        bytes += text + (line % 3 == 0 ? "\r\n" : "\n");
        rewritten += text + "\r\n";
    }
    const ScratchFolder scratch;
    const std::string path = scratch.Path("large.xml");
    for (std::size_t size : {bytes.size(), std::size_t{0x20000}, std::size_t{0x10000}, std::size_t{0x10000} - 2}) {
        WriteBytes(path, bytes.substr(0, size));
        WriteLineFile(ReadLineFile(path), path);
        const std::string all = ReadBytes(path);
        EXPECT_EQ(all.substr(0, all.size() - 2), rewritten.substr(0, all.size() - 2)) << size;
        EXPECT_GE(all.size(), size);
    }
}

TEST(LineFileTest, FindsLinesAsTheyAreNow)
{
    LineFile lines = LinesOf("ab|cab||ab c|x");
    // For each line, the number of the nearest one at or below it and of the nearest at or above it.
    const auto found = [&lines](const char* text) {
        std::string numbers;
        for (std::size_t line = 0; line < lines.End(); line = lines.Next(line))
            for (const auto at : {lines.FindDown(line, text), lines.FindUp(line, text)})
                numbers += at ? std::to_string(lines.Number(*at)) : "-";
        return numbers;
    };
    EXPECT_EQ(found("ab"),
              "11"
              "22"
              "42"
              "44"
              "-4");
    EXPECT_EQ(found(""),
              "11"
              "22"
              "33"
              "44"
              "55");
    EXPECT_EQ(found("b\nc"), "----------");
    lines.Edit(0) = "b\nc";
    lines.Edit(lines.Next(lines.Next(0))) = "abc";
    EXPECT_EQ(found("ab"),
              "2-"
              "22"
              "33"
              "44"
              "-4");
    EXPECT_EQ(found("b\nc"),
              "11"
              "-1"
              "-1"
              "-1"
              "-1");
    EXPECT_EQ(found("c"),
              "11"
              "22"
              "33"
              "44"
              "-4");
}

TEST(LineFileTest, SaysWhatCannotBeReadButNotWhatCannotBeWritten)
{
    const ScratchFolder scratch;
    for (const std::string& path : {scratch.Path("missing & \"more\""), scratch.Path("no folder") + "//./x",
                                    scratch.Folder().string(), std::string()})
        EXPECT_EQ(MessageOf([&] { ReadLineFile(path); }), "File \"" + path + "\" not found.");
    const std::string path = scratch.Path("read-only.xml");
    WriteBytes(path, "old\n");
    const UnwritableFile unwritable(path);
    for (const std::string& refused : {scratch.Path("no folder/file.xml"), scratch.Folder().string(), path})
        EXPECT_NO_THROW(WriteLineFile(LinesOf("new"), refused)) << refused;
    EXPECT_EQ(ReadBytes(path), "old\n");
}

// How often this process has asked the system to write.
long WriteCalls()
{
    std::ifstream counters("/proc/self/io");
    std::string name;
    long count = 0;
    while (counters >> name >> count && name != "syscw:") {
    }
    return count;
}

TEST(LineFileStandInTest, HandsOverLineByLineUntilOneFails)
{
    const ScratchFolder scratch;
    std::string text;
    for (int line = 0; line < 100; ++line)
        text += std::string(line == 7 ? 100'000 : 10, 'x') + (line % 2 == 0 ? "\n" : "\r\n");
    LineFile lines(text);
    lines.Edit(0) = "edited\ntwice";
    const long start = WriteCalls();
    WriteLineFile(lines, scratch.Path("file.xml"));
    const long written = WriteCalls();
    EXPECT_EQ(written - start, 100) << "one for each line";
    WriteLineFile(lines, "/dev/full");
    EXPECT_EQ(WriteCalls() - written, 1) << "the first line";
}

}  // namespace
