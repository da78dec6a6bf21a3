#include "xmledit/Blocks.h"

#include "support/Failures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>

namespace {

using qov::LineFile;

enum Way { Disable, Enable };

struct Kind {
    std::string element;
    void (*operations[2])(LineFile&, const std::string&);
};

const Kind Kinds[] = {{"ParameterBlock", {qov::DisableParameterBlock, qov::EnableParameterBlock}},
                      {"ConfigurableDomain", {qov::DisableConfigurableDomain, qov::EnableConfigurableDomain}}};

// Lines are parted by "|". "@" stands for the element's name, "[" and "]" for the markers that disabling sets.
LineFile Lines(std::string text, const Kind& kind, Way state = Disable)
{
    text = std::regex_replace(text, std::regex("@"), kind.element);
    text = std::regex_replace(text, std::regex("\\["), state == Disable ? "<!--" : "");
    text = std::regex_replace(text, std::regex("\\]"), state == Disable ? "-->" : "");
    LineFile lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, '|');)
        lines.push_back(line);
    return lines;
}

void ExpectEdit(const Kind& kind, Way way, const LineFile& before, const LineFile& after, const char* name = "Zan")
{
    LineFile lines = before;
    EXPECT_EQ(MessageOf([&] { kind.operations[way](lines, name); }), "(nothing thrown)");
    EXPECT_EQ(lines, after);
}

constexpr int LinesAbove = 2;

// A block that can be toggled stands above those of the text: it stays toggled, the others are as they were.
std::string RefusalOf(const Kind& kind, Way way, const std::string& text)
{
    const std::string blocks[] = {"<@ n='Zan'>|</@>|", "[<@ n='Zan'>|</@>]|"};
    LineFile lines = Lines(blocks[way] + text, kind);
    const std::string message = MessageOf([&] { kind.operations[way](lines, "Zan"); });
    EXPECT_EQ(lines, Lines(blocks[1 - way] + text, kind));
    return message;
}

TEST(BlocksTest, DisablingAndEnablingAreInverse)
{
    const char* texts[] = {"<root>|[\t <@ n=\"Zan\">|  <v>1</v>| </@>\t ]|<@ n=\"b\">|</@>|</root>",
                           "[ <@ n='Zan'></@> ]|x", "[<@>|<n>Zan</n>|x|</@>]", "[<@>|x|<n>Zan</n></@>]",
                           "[<@ n='Zan'>|Zan|Zan</@>]", "[<@ n='aZan2'>|</@>]",
                           "[<@ n='Zan'>|</@>]|<@ n='b'>|</@>|[<@ n='Zan'>|</@>]", "<@ n='zan'>|</@>",
                           // Tags over several lines, and attributes that look like the end of a tag.
                           "[<@| n='Zan'| v='1'|>|</@>]", "[<@ n='Zan' v=\"'/>\" w='\"/>' >|</@>]",
                           // Elements with a longer name, and empty ones of another name.
                           "[<@ n='Zan'>|<@Ref n='b'/>|<@2></@2>|</@>]", "[<@ n='Zan'><v/>|<w x='1'/>|</@>]"};
    for (const Kind& kind : Kinds) {
        for (const char* text : texts) {
            SCOPED_TRACE(text);
            const LineFile enabled = Lines(text, kind, Enable), disabled = Lines(text, kind, Disable);
            ExpectEdit(kind, Disable, enabled, disabled);
            ExpectEdit(kind, Disable, disabled, disabled);
            ExpectEdit(kind, Enable, disabled, enabled);
            ExpectEdit(kind, Enable, enabled, enabled);
        }
        const char* anyName = "[<@ n='a'>|</@>]|[<@></@>]|x";
        ExpectEdit(kind, Disable, Lines(anyName, kind, Enable), Lines(anyName, kind, Disable), "");
    }
}

TEST(BlocksTest, EndsAtTheFirstBlockInTheWantedState)
{
    const std::string on = "<@ n='Zan'>|</@>|", off = "[<@ n='Zan'>|</@>]|";
    for (const Kind& kind : Kinds) {
        ExpectEdit(kind, Disable, Lines(on + on + off + on, kind), Lines(off + off + off + on, kind));
        ExpectEdit(kind, Enable, Lines(off + off + on + off, kind), Lines(on + on + on + off, kind));
        // The rest of such a block is not looked at.
        for (const char* text :
             {"[<@ n='Zan'>", "  [ by hand ] <@ n='Zan'>|</@>|<@ n='Zan'>|</@>", "<@ n='Zan'/>[|</@>"})
            ExpectEdit(kind, Disable, Lines(text, kind), Lines(text, kind));
        for (const char* text : {"<@ n='Zan'>", "<@ n='Zan'/>|</@>", "<@ n='Zan'>|<@>|[ x ]|</@>|</@>"})
            ExpectEdit(kind, Enable, Lines(text, kind), Lines(text, kind));
    }
}

TEST(BlocksTest, RefusesABlockWithoutItsTags)
{
    for (const Kind& kind : Kinds) {
        for (const char* text : {"Zan|<@ n='b'>|</@>", "Zan|[<@ n='b'>|</@>]", "<Other n='Zan'>|</Other>"}) {
            LineFile lines = Lines(text, kind);
            for (const auto operation : kind.operations)
                EXPECT_EQ(MessageOf([&] { operation(lines, "Zan"); }),
                          "Section start tag \"<" + kind.element + "\"not found");
            EXPECT_EQ(lines, Lines(text, kind));
        }
        const std::string noEnd = "Parameter block end for keyword \"</" + kind.element + ">\"not found";
        EXPECT_EQ(RefusalOf(kind, Disable, "<@ n='b'>|</@>|<@ n='Zan'>|</@ ></Other>"), noEnd);
        EXPECT_EQ(RefusalOf(kind, Disable, "<@ n='b'>|</@>|Zan"), noEnd);
        EXPECT_EQ(RefusalOf(kind, Enable, "[<@ n='Zan'>|x]"), noEnd);
    }
}

TEST(BlocksTest, RefusesABlockThatWouldNotSurvive)
{
    // "#" marks the line that the message names.
    const std::vector<std::string> texts[] = {
        {// A block of the same kind inside, or part of one.
         "<@ n='Zan'>||#<@ n='b'>|</@>|</@>", "<@ n='Zan'>|#<@>|</@>|</@>", "<@ n='Zan'>|#<@/>|</@>",
         "<@ n='Zan'>|#<@\tn='b'>|</@>|</@>", "<@ n='Zan'>|x #<@|n='b'>|</@>|</@>", "|<@ n='Zan'>#<@ n='b'>|</@>|</@>",
         "<@ n='Zan'>|<@Ref/>#<@ n='b'></@>|</@>", "<@ n='a'>|</@>|Zan|#<@ n='Zan'>|</@>",
         "<@ n='a'>|#</@><@ n='Zan'>|</@>", "<@ n='Zan'>|</@>#<@ n='b'>|</@>", "<@ n='o'>|<@ n='i'>|#</@>|Zan|</@>",
         // An element without an end tag of its own.
         "<@ n='a'>|#<@ n='Zan'/>|</@>", "<@ n='a'>|#<@ n='Zan' v=\"'>\" w='>\"' />|</@>",
         "<@ n='a'>|<@|n='Zan'|v='a>b'|#/>|</@>",
         // Comment markers inside.
         "<@ n='Zan'>||#[ x ]|</@>", "<@ n='Zan'>|x #[|</@>", "<@ n='Zan'>|x #]|</@>", "[ x|#]<@ n='Zan'>|</@>",
         "<@ n='Zan'>|</@> #[ x ]", "<@ n='Zan'>#]</@>"},
        {"[<@ n='Zan'>||#<@ n='b'>|</@>]|</@>", "[<@ n='a'>|</@>]|Zan|#[<@ n='b'>|</@>]",
         "<@ n='a'>|#[</@><@ n='Zan'>|</@>]", "<@ n='a'>|#[<@ n='Zan'/>|</@>]",
         // Comment markers in other places than disabling sets them.
         "|  #[<@ n='Zan'>|</@>]", "<@ n='Zan'> #[ x ]|</@>]", "[<@ n='Zan'>||#</@>", "[<@ n='Zan'>||#</@>] ",
         "[<@ n='Zan'>|#</@>] [ x ]", "#[<@ n='Zan'>]|[ x ]|[</@>]", "#[ x ]<@ n='Zan'>|</@>[ x ]"}};
    for (const Kind& kind : Kinds) {
        for (const Way way : {Disable, Enable}) {
            for (std::string text : texts[way]) {
                SCOPED_TRACE(text);
                const auto mark = text.begin() + static_cast<std::ptrdiff_t>(text.find('#'));
                const auto line = 1 + LinesAbove + std::count(text.begin(), mark, '|');
                text.erase(mark);
                const std::string message = RefusalOf(kind, way, text);
                EXPECT_NE(message.find("\"Zan\""), std::string::npos) << message;
                EXPECT_NE(message.find("line " + std::to_string(line) + " "), std::string::npos) << message;
            }
        }
    }
}

}  // namespace
