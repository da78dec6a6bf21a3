#include "xmledit/QuotedValues.h"

#include "support/Failures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

using namespace qov;

// Lines are parted by "|"; an apostrophe stands for a double quote.
LineFile Lines(std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    LineFile lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, '|');)
        lines.push_back(line);
    return lines;
}

TEST(QuotedValuesTest, ReplacesTheValueOnTheFirstFittingLine)
{
    const std::string rows[][4] = {{"", "x| <P v='Id:old' w='z'/> ", "new", "x| <P v='Id:new' w='z'/> "},
                                   {"", "Id:old'>", "", "Id:'>"},
                                   {"", "Id:' z", "\xff<&>Id:\"b", "Id:\xff<&>Id:'b' z"},
                                   {"", "Id:\xe9'b' z|Id:c'", "new", "Id:new'b' z|Id:c'"},
                                   {"", "Id:a' Id:b'", "new", "Id:new' Id:b'"},
                                   {"", "MyId:a Id:b'", "new", "MyId:new'"},
                                   {"", "Id:a|Id:b'", "new", "Id:a|Id:new'"},
                                   {"key", "Id:a'|keys Id:b'", "new", "Id:a'|keys Id:new'"},
                                   {"key", "key|Id:b' key", "new", "key|Id:new' key"}};
    for (const auto& [keyword, text, value, edited] : rows) {
        LineFile lines = Lines(text);
        SetQuotedValue(lines, keyword, "Id:", value);
        EXPECT_EQ(lines, Lines(edited));
    }
    const std::string noKeyword = "No keyword found: Id:", noTag = "No tag found: Id:";
    const std::string noQuote = "No closing quotation mark found for tag: Id:";
    const std::string refusals[][3] = {
        {"", "v=' Id:a|'", noQuote},     {"", "id:a' ID:b' Id :c'", noTag}, {"", "", noTag},
        {"key", "Key Id:a'", noKeyword}, {"key", "key|Id:a'", noTag},       {"key", "key Id:a|Id:b'", noQuote}};
    for (const auto& row : refusals) {
        LineFile lines = Lines(row[1]);
        EXPECT_EQ(MessageOf([&] { SetQuotedValue(lines, row[0], "Id:", "new"); }), row[2]) << row[1];
        EXPECT_EQ(lines, Lines(row[1]));
    }
}

TEST(QuotedValuesTest, SettersHaveTheirTags)
{
    LineFile lines = Lines("DeviceId:0'|EndpointName:0'|ModuleGuid:0'|EndpointName:0'");
    SetDeviceId(lines, "1");
    SetEndpointName(lines, "2");
    SetModuleGuid(lines, "3");
    EXPECT_EQ(lines, Lines("DeviceId:1'|EndpointName:2'|ModuleGuid:3'|EndpointName:0'"));

    // The DEFAULT mode is set first, and stays set when the SPEECH mode cannot be.
    const std::string mode = "Subeffects_DefaultMode=ParamId:", speech = "Subeffects_SpeechMode";
    const std::string rows[][3] = {
        {speech + " ParamId:0'|" + mode + "0'", speech + " ParamId:2'|" + mode + "1'", "(nothing thrown)"},
        {mode + "0'|" + speech + "|ParamId:0'", mode + "1'|" + speech + "|ParamId:0'", "No tag found: ParamId:"},
        {mode + "0'|ParamId:0'", mode + "1'|ParamId:0'", "No keyword found: ParamId:"},
        {speech + " ParamId:0'", speech + " ParamId:0'", "No keyword found: ParamId:"}};
    for (const auto& [before, after, message] : rows) {
        LineFile modes = Lines(before);
        EXPECT_EQ(MessageOf([&] { SetModeParamIds(modes, "1", "2"); }), message);
        EXPECT_EQ(modes, Lines(after));
    }
}

TEST(QuotedValuesTest, PreparesValues)
{
    EXPECT_EQ(NarrowText(std::wstring(L"a\0\x7f\xe9\xff\x100\x20ac\xd83d\xde07", 9)),
              std::string("a\0\x7f\xe9\xff\0\xac\x3d\x07", 9));
    EXPECT_EQ(EscapeAmpersands("&a&&b&"), "&amp;a&amp;&amp;b&amp;");
    EXPECT_EQ(EscapeAmpersands("<&amp;> \"&#38;'"), "<&amp;amp;> \"&amp;#38;'");
    EXPECT_EQ(CommasToColons(",{272b1e6e-1e98},,1;:."), ":{272b1e6e-1e98}::1;:.");
}

}  // namespace
