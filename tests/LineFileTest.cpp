#include "xmledit/LineFile.h"

#include "support/Failures.h"
#include "support/Scratch.h"
#include "support/UnwritableFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

namespace {

using namespace qov;

TEST(LineFileTest, ReadsLinesAndWritesThemBackWithCrLf)
{
    const std::string odd("\xef\xbb\xbf<x>\0\t \x80\xff\x0b ", 13);  // a byte-order mark and more
    const std::tuple<std::string, LineFile, std::string> rows[] = {
        {"", {}, ""},
        {"\n", {""}, "\r\n"},
        {"a\nb", {"a", "b"}, "a\r\nb\r\n"},
        {"a\r\nb\nc\r\n", {"a", "b", "c"}, "a\r\nb\r\nc\r\n"},
        {"\r\n\na\n\n", {"", "", "a", ""}, "\r\n\r\na\r\n\r\n"},
        {"\ra\rb\n\rc\r", {"\ra\rb", "\rc\r"}, "\ra\rb\r\n\rc\r\r\n"},
        {"a\r\r\nb", {"a\r", "b"}, "a\r\r\nb\r\n"},
        {odd + "\n", {odd}, odd + "\r\n"},
        {"a\x1a\nb\n\x1a", {"a\x1a", "b", "\x1a"}, "a\x1a\r\nb\r\n\x1a\r\n"}};
    const ScratchFolder scratch;
    const std::string path = scratch.Path("file.xml");
    for (const auto& [bytes, lines, rewritten] : rows) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        WriteBytes(path, bytes);
        EXPECT_EQ(ReadLineFile(path), lines);
        WriteLineFile(lines, path);
        EXPECT_EQ(ReadBytes(path), rewritten);
    }
}

TEST(LineFileTest, WritesTheWholeFileAnew)
{
    const ScratchFolder scratch;
    const std::string path = scratch.Path("new file.xml");
    WriteLineFile({"much longer than what follows"}, path);
    EXPECT_EQ(ReadBytes(path), "much longer than what follows\r\n");
    // Other users of the file are no hindrance where the system knows exclusive use, as Windows does.
    const std::fstream otherUser(path, std::ios::in | std::ios::out | std::ios::binary);
    WriteLineFile({"a\nb", "c\r\nd", "\n"}, path);
    EXPECT_EQ(ReadBytes(path), "a\r\nb\r\nc\r\r\nd\r\n\r\n\r\n");
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
        EXPECT_NO_THROW(WriteLineFile({"new"}, refused)) << refused;
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
    const LineFile lines(100, "line");
    const long start = WriteCalls();
    WriteLineFile(lines, scratch.Path("file.xml"));
    const long written = WriteCalls();
    EXPECT_GE(written - start, 100);
    WriteLineFile(lines, "/dev/full");
    EXPECT_LT(WriteCalls() - written, 10) << "the first line, and what the C library does when it closes the file";
}

}  // namespace
