#include "machine/Utf16.h"

#include <gtest/gtest.h>

namespace {

struct Row {
    std::wstring wide;
    std::string narrow;
};

TEST(Utf16Test, TurnsCodePointsIntoUnitsAndBack)
{
    const Row rows[] = {
        {L"", ""},
        {std::wstring(L"a\0~\x7f", 4), std::string("a\0~\x7f", 4)},
        {L"\x80\xe9\x7ff", "\xc2\x80\xc3\xa9\xdf\xbf"},
        {L"\x800\x20ac\xd7ff\xe000\xffff", "\xe0\xa0\x80\xe2\x82\xac\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf"},
        {L"\xd800\xdc00\xd83c\xdfa7\xdbff\xdfff", "\xf0\x90\x80\x80\xf0\x9f\x8e\xa7\xf4\x8f\xbf\xbf"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(machine::Utf8ToUtf16(row.narrow), row.wide);
        EXPECT_EQ(machine::Utf16ToUtf8(row.wide), row.narrow);
        EXPECT_TRUE(machine::IsUtf16(row.wide));
    }
}

TEST(Utf16Test, ReplacesUnpairedSurrogates)
{
    const Row rows[] = {
        {L"a\xd83c", "a\xef\xbf\xbd"},
        {L"\xdfa7z\xdbffz", "\xef\xbf\xbdz\xef\xbf\xbdz"},
        {L"\xdfa7\xd83c", "\xef\xbf\xbd\xef\xbf\xbd"},
        {L"\xd83c\xd83c\xdfa7", "\xef\xbf\xbd\xf0\x9f\x8e\xa7"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(machine::Utf16ToUtf8(row.wide), row.narrow);
        EXPECT_FALSE(machine::IsUtf16(row.wide));
    }
}

}  // namespace
