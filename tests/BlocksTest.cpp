#include "xmledit/Blocks.h"

#include "support/Failures.h"
#include "support/LineTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace {

using qov::LineFile;

enum Way { Disable, Enable };

const std::string Off = "[<@ n='Zan'>|</@>]|", On = "<@ n='Zan'>|</@>|", Done = "(nothing thrown)";

struct Kind {
    std::string element;
    void (*operations[2])(LineFile&, const std::string&);
};

class BlocksTest : public testing::TestWithParam<Kind> {
protected:
    // Lines are parted by "|". "@" stands for the element's name, "[" and "]" for the markers that disabling sets.
    static LineFile Lines(std::string text, Way state = Disable)
    {
        text = std::regex_replace(text, std::regex("@"), GetParam().element);
        text = std::regex_replace(text, std::regex("\\["), state == Disable ? "<!--" : "");
        text = std::regex_replace(text, std::regex("\\]"), state == Disable ? "-->" : "");
        return LinesOf(text);
    }

    // What is thrown when the lines have become those after it.
    static std::string Edit(Way way, LineFile lines, const LineFile& after, const char* name = "Zan")
    {
        const std::string message = MessageOf([&] { GetParam().operations[way](lines, name); });
        EXPECT_EQ(TextOf(lines), TextOf(after));
        return message;
    }

    // A block that can be toggled stands above those of the text: it stays toggled, the others are as they were.
    static std::string RefusalOf(Way way, const std::string& text)
    {
        return Edit(way, Lines((way == Disable ? On : Off) + text), Lines((way == Disable ? Off : On) + text));
    }
};

INSTANTIATE_TEST_SUITE_P(
    Both, BlocksTest,
    testing::Values(Kind{"ParameterBlock", {qov::DisableParameterBlock, qov::EnableParameterBlock}},
                    Kind{"ConfigurableDomain", {qov::DisableConfigurableDomain, qov::EnableConfigurableDomain}}),
    [](const auto& kind) { return kind.param.element; });

TEST_P(BlocksTest, DisablingAndEnablingAreInverse)
{
    for (const char* text :
         {"<root>|[\t <@ n=\"Zan\">|  <v>1</v>| </@>\t ]|<@ n=\"b\">|</@>|</root>", "[ <@ n='Zan'></@> ]|x",
          "[<@>|<n>Zan</n>|x|</@>]", "[<@>|x|<n>Zan</n></@>]", "[<@ n='Zan'>|Zan|Zan</@>]", "[<@ n='aZan2'>|</@>]",
          "[<@ n='Zan'>|</@>]|<@ n='b'>|</@>|[<@ n='Zan'>|</@>]", "<@ n='zan'>|</@>",
          // Tags over several lines, and attributes that look like the end of a tag.
          "[<@| n='Zan'| v='1'|>|</@>]", "[<@ n='Zan' v=\"'/>\" w='\"/>' >|</@>]",
          // Elements with a longer name, and empty ones of another name.
          "[<@ n='Zan'>|<@Ref n='b'/>|<@2></@2>|</@>]", "[<@ n='Zan'>|<@\x80/><@\xff/>|</@>]",
          "[<@ n='Zan'>|<@0/><@9/><@A/><@Z/><@a/><@z/><@_/><@-/><@./><@:/>|</@>]",
          // Any line that holds the start tag starts a block, whatever follows it.
          "[<@Ref n='Zan'></@>]", "[<@ n='Zan'><v/>|<w x='1'/>|</@>]"}) {
        const LineFile enabled = Lines(text, Enable), disabled = Lines(text, Disable);
        for (const LineFile& lines : {enabled, disabled}) {
            EXPECT_EQ(Edit(Disable, lines, disabled), Done) << text;
            EXPECT_EQ(Edit(Enable, lines, enabled), Done) << text;
        }
    }
    EXPECT_EQ(Edit(Disable, Lines("<@ n='a'>|</@>|<@></@>|x"), Lines("[<@ n='a'>|</@>]|[<@></@>]|x"), ""), Done);
}

TEST_P(BlocksTest, EndsAtTheFirstBlockInTheWantedState)
{
    EXPECT_EQ(Edit(Disable, Lines(On + On + Off + On), Lines(Off + Off + Off + On)), Done);
    EXPECT_EQ(Edit(Enable, Lines(Off + Off + On + Off), Lines(On + On + On + Off)), Done);
    // The rest of such a block is not looked at.
    for (const char* text : {"[<@ n='Zan'>", "  [ by hand ] <@ n='Zan'>|</@>|<@ n='Zan'>|</@>", "<@ n='Zan'/>[|</@>"})
        EXPECT_EQ(Edit(Disable, Lines(text), Lines(text)), Done);
    for (const char* text : {"<@ n='Zan'>", "<@ n='Zan'/>|</@>", "<@ n='Zan'>|<@>|[ x ]|</@>|</@>"})
        EXPECT_EQ(Edit(Enable, Lines(text), Lines(text)), Done);
}

TEST_P(BlocksTest, RefusesABlockWithoutItsTags)
{
    const std::string& element = GetParam().element;
    for (const char* text : {"Zan|<@ n='b'>|</@>", "Zan|[<@ n='b'>|</@>]", "<Other n='Zan'>|</Other>"})
        for (const Way way : {Disable, Enable})
            EXPECT_EQ(Edit(way, Lines(text), Lines(text)), "Section start tag \"<" + element + "\"not found");
    const std::string noEnd = "Parameter block end for keyword \"</" + element + ">\"not found";
    EXPECT_EQ(RefusalOf(Disable, "<@ n='b'>|</@>|<@ n='Zan'>|</@ ></Other>"), noEnd);
    EXPECT_EQ(RefusalOf(Disable, "<@ n='b'>|</@>|Zan"), noEnd);
    EXPECT_EQ(RefusalOf(Enable, "[<@ n='Zan'>|x]"), noEnd);
}

TEST_P(BlocksTest, RefusesABlockThatWouldNotSurvive)
{
    struct Refusal {
        Way way;
        std::string reason;
        std::vector<std::string> texts;
    };
    // "#" marks the line that the message names; the lines of the block above count as well.
    const std::string another = "starts another block inside it", further = "holds a further comment marker";
    const Refusal rows[] = {
        {Disable,
         another,
         {"<@ n='Zan'>||#<@ n='b'>|</@>|</@>", "<@ n='Zan'>|#<@>|</@>|</@>", "<@ n='Zan'>|#<@/>|</@>",
          "<@ n='Zan'>|#<@\tn='b'>|</@>|</@>", "<@ n='Zan'>|x #<@|n='b'>|</@>|</@>", "|<@ n='Zan'>#<@ n='b'>|</@>|</@>",
          "<@ n='Zan'>|<@Ref/>#<@ n='b'></@>|</@>", "<@ n='a'>|</@>|Zan|#<@ n='Zan'>|</@>",
          "<@ n='Zan'>|</@>#<@ n='b'>|</@>"}},
        {Disable, "holds the end of another block", {"<@ n='a'>|#</@><@ n='Zan'>|</@>"}},
        {Disable, "ends another block inside it", {"<@ n='o'>|<@ n='i'>|#</@>|Zan|</@>"}},
        {Disable,
         "closes the element in its start tag",
         {"<@ n='a'>|#<@ n='Zan'/>|</@>", "<@ n='a'>|#<@ n='Zan' v=\"'>\" w='>\"' />|</@>",
          "<@ n='a'>|<@|n='Zan'|v='a>b'|#/>|</@>", "#<@Ref n='Zan'/>|</@>"}},
        {Disable,
         "holds a comment marker",
         {"<@ n='Zan'>||#[ x ]|</@>", "<@ n='Zan'>|x #[|</@>", "<@ n='Zan'>|x #]|</@>", "[ x|#]<@ n='Zan'>|</@>",
          "<@ n='Zan'>|</@> #[ x ]", "<@ n='Zan'>#]</@>"}},
        {Enable, another, {"[<@ n='Zan'>||#<@ n='b'>|</@>]|</@>", "[<@ n='a'>|</@>]|Zan|#[<@ n='b'>|</@>]"}},
        {Enable, "holds the end of another block", {"<@ n='a'>|#[</@><@ n='Zan'>|</@>]"}},
        {Enable, "closes the element in its start tag", {"<@ n='a'>|#[<@ n='Zan'/>|</@>]"}},
        // Comment markers in other places than disabling sets them.
        {Enable, "does not begin with \"<!--\"", {"|  #[<@ n='Zan'>|</@>]", "<@ n='Zan'> #[ x ]|</@>]"}},
        {Enable, "does not end with \"-->\"", {"[<@ n='Zan'>||#</@>", "[<@ n='Zan'>||#</@>] "}},
        {Enable, further, {"[<@ n='Zan'>|#</@>] [ x ]", "#[<@ n='Zan'>]|[ x ]|[</@>]", "#[ x ]<@ n='Zan'>|</@>[ x ]"}},
    };
    for (const Refusal& row : rows) {
        for (std::string text : row.texts) {
            const auto line = 3 + std::count(text.begin(), std::find(text.begin(), text.end(), '#'), '|');
            std::erase(text, '#');
            EXPECT_EQ(RefusalOf(row.way, text), std::string("Cannot ") + (row.way == Disable ? "disable" : "enable") +
                                                    " block \"Zan\": line " + std::to_string(line) + " " + row.reason)
                << text;
        }
    }
}

}  // namespace
