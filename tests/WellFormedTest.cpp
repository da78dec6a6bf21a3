// One table of verdicts for the parsers of all systems.
#include "host/review/WellFormed.h"

#include "host/review/PlainXml.h"
#include "host/review/XmlParser.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Row {
    const char* name;
    std::string xml;
    std::size_t line;  // of the fault; 0: well-formed
};

constexpr std::size_t Somewhere = 99;  // parsers differ in where they miss what is not there

const Row Rows[] = {
    {"one element", "<a/>", 0},
    {"all kinds of markup", "<?xml version='1.0'?>\n<!-- c -->\n<a b=\"1\" c='2'><![CDATA[<&]]><?p i?>t</a>\n<!---->\n",
     0},
    {"line ends of every kind", "<a>\r\n<b>\r</b>\n</a>\r\n", 0},
    {"nothing", "", Somewhere},
    {"no element", "<!-- c -->\n", Somewhere},
    {"text alone", "text", 1},
    {"text behind the root", "<a/>\ntext", 2},
    {"a second root", "<a/>\n<b/>", 2},
    {"an element left open", "<a>\n<b>\n</b>\n", Somewhere},
    {"end tags crossed", "<a>\r\n<b></a>\r\n</b>", 2},
    {"lone carriage returns are no lines", "<a>\r\r\r\n<b></a>", 2},
    {"an end tag alone", "</a>", 1},
    {"a tag cut short", "<a>\n<b c=", 2},
    {"an attribute without quotes", "<a b=1/>", 1},
    {"an angle bracket in a value", "<a b='<'/>", 1},
    {"the five entities", "<a b='&lt;&gt;'>&amp;&quot;&apos;</a>", 0},
    {"references to characters", "<a>&#65;&#x1F600;</a>", 0},
    {"dashes in a comment", "<a>\n<!-- a -- b --></a>", 2},
    {"three dashes end no comment", "<a><!-- a ---></a>", 1},
    {"a comment within a comment", "<a><!-- <!-- --></a>", 1},
    {"a comment left open", "<a>\n<!-- </a>", 2},
    {"a section's end in text", "<a>]]></a>", 1},
    {"NUL", std::string("<a>\0</a>", 8), 1},
    {"the delete character", "<a>\x7f</a>", 0},
    {"a mark of UTF-8", "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>", 0},
    {"a blank before the declaration", " <?xml version=\"1.0\"?><a/>", 1},
    {"a declaration without version", "<?xml encoding=\"UTF-8\"?><a/>", 1},
    {"another version", "<?xml version=\"1.1\"?><a/>", 0},
    {"standalone", "<?xml version=\"1.0\" encoding='x-unheard.of_9' standalone=\"yes\"?><a/>", 0},
    {"declared as UTF-16 but not so", "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a/>", 0},
    {"bytes that are no UTF-8", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a b='\xe9\xff'>\x80\xc3</a>", 0},
    {"letters above ASCII in names", "<caf\xc3\xa9 \xe9='1' \xea='2'></caf\xc3\xa9>", 0},
    {"names that differ above ASCII", "<a\xe9></a\xea>", 1},
    {"letters behind the root", "<a/>\xe9", 1},
    {"prefixes that nobody declared", "<p:a q:b='1' xml:space='any'><p:c/></p:a>", 0},
    {"prefixes that differ", "<p:a></q:a>", 1},
    {"a document type", "<!DOCTYPE a SYSTEM \"no-such-file.dtd\">\n<a>\n<b></a>", 3},
    {"a document type's own entities",
     "<?xml version='1.0'?><!-- <!DOCTYPE --><!DOCTYPE a [<!ENTITY e \"]>\"><!-- ]> -->\n<!ENTITY f SYSTEM 'x'>\n]>\n"
     "<a b='&e;'>&e;&f;</a>",
     0},
    {"a bomb",
     "<!DOCTYPE a [<!ENTITY b '0123456789'><!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'><!ENTITY d '&c;&c;&c;&c;&c;&c;&c;'>]>"
     "<a>&d;</a>",
     0},
    {"a document type left open", "<!DOCTYPE a [\n<!ENTITY e 'x'>\n<a/>", 1},
    {"two document types", "<!DOCTYPE a>\n<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", 2},
    {"a document type within the root", "<a><!DOCTYPE a></a>", 1},
    {"what a toggle beside other markup leaves", "<r>\n<!--<!-- c --><b>\n</b>-->\n</r>", 2},
};

// Wine's reader passes over these; that of Windows need not.
const Row RowsOfFullReaders[] = {
    {"an attribute twice", "<a>\n<b c='1' c='2'/></a>", 2},
    {"attributes that touch", "<a b='1'c='2'/>", 1},
    {"a lone ampersand", "<a>&</a>", 1},
    {"a reference to no character", "<a>&#xD800;</a>", 1},
    {"a reference to NUL", "<a>&#0;</a>", 1},
    {"an entity of nobody", "<a>\n&no;</a>", 2},
    {"a control character", "<a>\n\x01</a>", 2},
    {"white space before the root", "\n <a/>", 0},
};

void Expect(const Row& row)
{
    const auto fault = host::WellFormedFault(row.xml);
    EXPECT_EQ(fault.has_value(), row.line != 0) << row.name << ": " << (fault ? fault->reason : "no fault");
    if (!fault)
        return;
    EXPECT_NE(fault->reason, "") << row.name;
    EXPECT_GT(fault->line, 0U) << row.name;
    EXPECT_TRUE(row.line == Somewhere || fault->line == row.line) << row.name << ": " << fault->reason << fault->line;
}

TEST(WellFormedTest, GivesTheSameVerdictEverywhere)
{
    for (const Row& row : Rows)
        Expect(row);
}

TEST(WellFormedStandInTest, SeesWhatFullReadersSee)
{
    for (const Row& row : RowsOfFullReaders)
        Expect(row);
}

TEST(WellFormedTest, DepthAndSizeAreNoFault)
{
    std::string deep;
    for (int depth = 0; depth < 2000; ++depth)
        deep += "<a>";
    EXPECT_TRUE(host::WellFormedFault(deep));
    for (int depth = 0; depth < 2000; ++depth)
        deep += "</a>";
    EXPECT_FALSE(host::WellFormedFault(deep));
    EXPECT_FALSE(host::WellFormedFault("<a b='" + std::string(3'000'000, 'x') + "'/>"));
}

// What is seen at a glance is what a parser finds: for every document that differs in one byte from one of all plain
// kinds.
TEST(PlainXmlTest, VouchesForNothingThatAParserRefuses)
{
    const std::string plain =
        "<?xml version=\"1.0\"?>\n<!-- a-b -->\n<a b='1' c = \"x&amp;&lt;'\" >t&gt;]] <d e='\"'/><_f>\r\n</_f ></a>\n";
    EXPECT_TRUE(host::IsPlainXml(plain));
    std::size_t vouched = 0;
    for (std::size_t at = 0; at < plain.size(); ++at) {
        for (const char byte : std::string("<>/!-?=&;]'\" \nab1\x01\0", 19)) {
            std::string changed = plain;
            changed[at] = byte;
            for (const std::string& document : {changed, plain.substr(0, at) + byte + plain.substr(at)}) {
                if (!host::IsPlainXml(document))
                    continue;
                ++vouched;
                EXPECT_FALSE(host::ParserFault(document)) << document;
            }
        }
    }
    EXPECT_GT(vouched, plain.size()) << "some of the changes do no harm";
    for (const Row& row : Rows)
        EXPECT_TRUE(row.line == 0 || !host::IsPlainXml(row.xml)) << row.name;
    for (const Row& row : RowsOfFullReaders)
        EXPECT_TRUE(row.line == 0 || !host::IsPlainXml(row.xml)) << row.name;
}

}  // namespace
