#include "discovery/GuidText.h"

#include "support/Failures.h"

#include <gtest/gtest.h>

namespace {

using namespace qov;

TEST(GuidTextTest, WritesAndReadsTheBracedForm)
{
    const std::wstring good = L"{bcde0395-e52f-467c-8e3d-c4579291692e}";
    const GUID goodGuid{0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
    const std::pair<GUID, std::wstring> rows[] = {
        {{}, L"{00000000-0000-0000-0000-000000000000}"},
        {goodGuid, good},
        {{0x1, 0xA, 0xB0, {0, 0x1, 0x2, 0x30, 0, 0x5, 0x60, 0xF}}, L"{00000001-000a-00b0-0001-02300005600f}"}};
    for (const auto& [guid, text] : rows) {
        EXPECT_EQ(GuidToText(guid), text);
        EXPECT_EQ(TextToGuid(text), guid);
        EXPECT_EQ(TextToGuid(text + std::wstring(L"\0\0z", 3)), guid);
    }
    EXPECT_EQ(TextToGuid(L"{BCDE0395-E52F-467C-8E3D-C4579291692E}"), goodGuid);
    for (const std::wstring& text : {std::wstring(L"no GUID"), good.substr(0, 37), good + L"z",
                                     good.substr(0, 36) + L"g}", std::wstring(L"{bcde\0", 6) + good})
        EXPECT_EQ(MessageOf([&] { TextToGuid(text); }),
                  "Call to CLSIDFromString() API failed with error code: 0x800401f3");
}

TEST(GuidTextTest, SplitsAtDelimiters)
{
    const std::pair<std::wstring, std::vector<std::wstring>> rows[] = {
        {L"", {}},
        {L";", {L""}},
        {L"a b,c\n", {L"a b,c\n"}},
        {L"a;b;", {L"a", L"b"}},
        {L";a;;b;;", {L"", L"a", L"", L"b", L""}},
        {L"\xffff;\xffff\xfffe;\xffff", {L"\xffff", L"\xffff\xfffe", L"\xffff"}},
        {std::wstring(L"\0a;\0\x123b", 5), {std::wstring(L"\0a", 2), std::wstring(L"\0\x123b", 2)}}};
    for (const auto& [text, pieces] : rows)
        EXPECT_EQ(SplitText(text, L';'), pieces) << testing::PrintToString(text);
    EXPECT_EQ(SplitText(std::wstring(L"a\0\0b;\0", 6), L'\0'), (std::vector<std::wstring>{L"a", L"", L"b;"}));
}

TEST(GuidTextTest, HoldsTextInBytesLowByteFirst)
{
    const std::wstring text(L"a\x20ac\0\xff80\xd83d", 5);
    EXPECT_EQ(BytesToText({}), L"");
    EXPECT_EQ(BytesToText({0x61}), L"");
    EXPECT_EQ(BytesToText({0x61, 0, 0xac, 0x20, 0, 0, 0x80, 0xff, 0x3d, 0xd8, 0x7a}), text);
    EXPECT_EQ(TextToBytes(L""), Bytes(2, 0));
    EXPECT_EQ(TextToBytes(text), (Bytes{0x61, 0, 0xac, 0x20, 0, 0, 0x80, 0xff, 0x3d, 0xd8, 0, 0}));
}

}  // namespace
