#include "xmledit/QuotedValues.h"

#include "support/Failures.h"
#include "support/LineTexts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace qov;

// An apostrophe stands for a double quote.
LineFile Lines(std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    return LinesOf(text);
}

TEST(QuotedValuesTest, ReplacesTheValueOnTheFirstFittingLine)
{
    const std::string done = "(nothing thrown)", noKeyword = "No keyword found: Id:", noTag = "No tag found: Id:";
    const std::string noQuote = "No closing quotation mark found for tag: Id:";
    const std::string rows[][5] = {// Keyword, text, value, edited text, message.
                                   {"", "x| <P v='Id:old' w='z'/> ", "new", "x| <P v='Id:new' w='z'/> ", done},
                                   {"", "MyId:a Id:b' Id:c'>", "", "MyId:' Id:c'>", done},
                                   {"", "Id:\xe9'b' z|Id:c'", "\xff<&>Id:\"b", "Id:\xff<&>Id:'b'b' z|Id:c'", done},
                                   {"", "Id:a|Id:'", "new", "Id:a|Id:new'", done},
                                   {"key", "Id:a'|key|Id:b' keys", "new", "Id:a'|key|Id:new' keys", done},
                                   {"", "id:a' ID:b' Id :c'", "new", "id:a' ID:b' Id :c'", noTag},
                                   {"key", "Key Id:a'", "new", "Key Id:a'", noKeyword},
                                   {"key", "key|Id:a'", "new", "key|Id:a'", noTag},
                                   {"key", "key' Id:a|Id:b'", "new", "key' Id:a|Id:b'", noQuote}};
    for (const auto& row : rows) {
        LineFile lines = Lines(row[1]);
        EXPECT_EQ(MessageOf([&] { SetQuotedValue(lines, row[0], "Id:", row[2]); }), row[4]) << row[1];
        EXPECT_EQ(TextOf(lines), TextOf(Lines(row[3])));
    }
}

TEST(QuotedValuesTest, SettersHaveTheirTags)
{
    LineFile lines = Lines("DeviceId:0'|EndpointName:0'|ModuleGuid:0'|EndpointName:0'");
    SetDeviceId(lines, "1");
    SetEndpointName(lines, "2");
    SetModuleGuid(lines, "3");
    EXPECT_EQ(TextOf(lines), TextOf(Lines("DeviceId:1'|EndpointName:2'|ModuleGuid:3'|EndpointName:0'")));

    lines = Lines("Subeffects_SpeechMode ParamId:0'|Subeffects_DefaultMode=ParamId:0'");
    SetModeParamIds(lines, "1", "2");
    EXPECT_EQ(TextOf(lines), TextOf(Lines("Subeffects_SpeechMode ParamId:2'|Subeffects_DefaultMode=ParamId:1'")));
    // The DEFAULT mode is set first, and stays set when the SPEECH mode cannot be.
    lines = Lines("Subeffects_DefaultMode=ParamId:0'|Subeffects_SpeechMode|ParamId:0'");
    EXPECT_EQ(MessageOf([&] { SetModeParamIds(lines, "1", "2"); }), "No tag found: ParamId:");
    EXPECT_EQ(TextOf(lines), TextOf(Lines("Subeffects_DefaultMode=ParamId:1'|Subeffects_SpeechMode|ParamId:0'")));
}

TEST(QuotedValuesTest, PreparesValues)
{
    EXPECT_EQ(NarrowText(std::wstring(L"a\0\x7f\xe9\xff\x100\x20ac\xd83d\xde07", 9)),
              std::string("a\0\x7f\xe9\xff\0\xac\x3d\x07", 9));
    EXPECT_EQ(EscapeAmpersands("&a&&b<&amp;> \"#38;'&"), "&amp;a&amp;&amp;b<&amp;amp;> \"#38;'&amp;");
    EXPECT_EQ(CommasToColons(",{272b1e6e-1e98},,1;:."), ":{272b1e6e-1e98}::1;:.");
}

}  // namespace
