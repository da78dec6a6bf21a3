#include "xmledit/Blocks.h"

#include "common/Failure.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace qov {

namespace {

constexpr std::string_view CommentStart = "<!--";
constexpr std::string_view CommentEnd = "-->";
constexpr std::size_t NotFound = std::string::npos;

enum class State { Disabled, Enabled };

// What a call looks for and what it makes of it.
struct Toggle {
    State wanted;
    const std::string& keyword;
    const std::string& startTag;
    const std::string& endTag;
};

struct Block {
    std::size_t startLine;
    std::size_t endLine;
    std::size_t element;  // position of the block's own start tag on the start line
};

bool Holds(std::string_view line, std::string_view text) { return line.find(text) != NotFound; }

bool IsNameByte(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return (value >= '0' && value <= '9') || (value >= 'A' && value <= 'Z') || (value >= 'a' && value <= 'z') ||
           value >= 0x80 || byte == '_' || byte == '-' || byte == '.' || byte == ':';
}

// The first start tag at or after `from` whose element name ends with it ("<ParameterBlockRef" is none).
std::size_t FindElement(std::string_view line, const std::string& startTag, std::size_t from)
{
    for (std::size_t found = line.find(startTag, from); found != NotFound; found = line.find(startTag, found + 1)) {
        const std::size_t next = found + startTag.size();
        if (next == line.size() || !IsNameByte(line[next]))
            return found;
    }
    return NotFound;
}

[[noreturn]] void Refuse(const LineFile& lines, std::size_t line, const Toggle& toggle, const std::string& reason)
{
    Fail(std::string("Cannot ") + (toggle.wanted == State::Disabled ? "disable" : "enable") + " block \"" +
         toggle.keyword + "\": line " + std::to_string(lines.Number(line)) + " " + reason);
}

void RefuseOtherBlocks(const LineFile& lines, const Block& block, const Toggle& toggle)
{
    if (lines[block.startLine].find(toggle.endTag) < block.element)
        Refuse(lines, block.startLine, toggle, "holds the end of another block");
    for (std::size_t line = block.startLine; line <= block.endLine; line = lines.Next(line)) {
        const std::size_t from = line == block.startLine ? block.element + 1 : 0;
        if (FindElement(lines[line], toggle.startTag, from) != NotFound)
            Refuse(lines, line, toggle, "starts another block inside it");
    }
    // The end line is the first at or below the keyword: an end tag above it closes something else.
    for (std::size_t line = block.startLine; line < block.endLine; line = lines.Next(line))
        if (Holds(lines[line], toggle.endTag))
            Refuse(lines, line, toggle, "ends another block inside it");
}

// The element's start tag ends at the first '>' outside its attribute values, maybe on a later line.
void RefuseSelfClosing(const LineFile& lines, const Block& block, const Toggle& toggle)
{
    char quote = '\0';
    char previous = '\0';
    for (std::size_t line = block.startLine; line <= block.endLine; line = lines.Next(line)) {
        const std::size_t from = line == block.startLine ? block.element + toggle.startTag.size() : 0;
        for (const char byte : lines[line].substr(from)) {
            if (quote != '\0') {
                if (byte == quote)
                    quote = '\0';
            } else if (byte == '"' || byte == '\'') {
                quote = byte;
            } else if (byte == '>') {
                if (previous == '/')
                    Refuse(lines, line, toggle, "closes the element in its start tag");
                return;
            }
            previous = byte;
        }
    }
}

bool HoldsMarker(std::string_view line) { return Holds(line, CommentStart) || Holds(line, CommentEnd); }

void RefuseMarkers(const LineFile& lines, const Block& block, const Toggle& toggle)
{
    if (toggle.wanted == State::Disabled) {
        for (std::size_t line = block.startLine; line <= block.endLine; line = lines.Next(line))
            if (HoldsMarker(lines[line]))
                Refuse(lines, line, toggle, "holds a comment marker");
        return;
    }
    if (!lines[block.startLine].starts_with(CommentStart))
        Refuse(lines, block.startLine, toggle, "does not begin with \"<!--\"");
    if (!lines[block.endLine].ends_with(CommentEnd))
        Refuse(lines, block.endLine, toggle, "does not end with \"-->\"");
    // What disabling wrote are the only markers of these two lines; others belong to comments made by hand.
    std::string_view start = lines[block.startLine];
    std::string_view end = lines[block.endLine];
    const bool oneLine = block.startLine == block.endLine;
    start.remove_prefix(CommentStart.size());
    (oneLine ? start : end).remove_suffix(CommentEnd.size());
    if (HoldsMarker(start))
        Refuse(lines, block.startLine, toggle, "holds a further comment marker");
    if (!oneLine && HoldsMarker(end))
        Refuse(lines, block.endLine, toggle, "holds a further comment marker");
}

void Edit(LineFile& lines, const Block& block, State wanted)
{
    std::string& startLine = lines.Edit(block.startLine);
    std::string& endLine = lines.Edit(block.endLine);
    if (wanted == State::Disabled) {
        startLine.insert(0, CommentStart);
        endLine.append(CommentEnd);
    } else {
        startLine.erase(0, CommentStart.size());
        endLine.erase(endLine.size() - CommentEnd.size());
    }
}

void ToggleBlocks(LineFile& lines, const Toggle& toggle)
{
    std::size_t resume = 0;
    while (const auto keywordLine = lines.FindDown(resume, toggle.keyword)) {
        const auto startLine = lines.FindUp(*keywordLine, toggle.startTag);
        if (!startLine)
            Fail("Section start tag \"" + toggle.startTag + "\"not found");
        const State state = Holds(lines[*startLine], CommentStart) ? State::Disabled : State::Enabled;
        if (state == toggle.wanted)
            return;
        const auto endLine = lines.FindDown(*keywordLine, toggle.endTag);
        if (!endLine)
            Fail("Parameter block end for keyword \"" + toggle.endTag + "\"not found");

        const std::size_t named = FindElement(lines[*startLine], toggle.startTag, 0);
        const Block block{*startLine, *endLine, named != NotFound ? named : lines[*startLine].find(toggle.startTag)};
        RefuseSelfClosing(lines, block, toggle);
        RefuseOtherBlocks(lines, block, toggle);
        RefuseMarkers(lines, block, toggle);
        Edit(lines, block, toggle.wanted);
        resume = lines.Next(*endLine);
    }
}

constexpr char ParameterBlockStart[] = "<ParameterBlock";
constexpr char ParameterBlockEnd[] = "</ParameterBlock>";
constexpr char ConfigurableDomainStart[] = "<ConfigurableDomain";
constexpr char ConfigurableDomainEnd[] = "</ConfigurableDomain>";

}  // namespace

void CommentOutBlocks(LineFile& lines, const std::string& keyword, const std::string& startTag,
                      const std::string& endTag)
{
    ToggleBlocks(lines, {State::Disabled, keyword, startTag, endTag});
}

void UncommentBlocks(LineFile& lines, const std::string& keyword, const std::string& startTag,
                     const std::string& endTag)
{
    ToggleBlocks(lines, {State::Enabled, keyword, startTag, endTag});
}

void DisableParameterBlock(LineFile& lines, const std::string& name)
{
    CommentOutBlocks(lines, name, ParameterBlockStart, ParameterBlockEnd);
}

void EnableParameterBlock(LineFile& lines, const std::string& name)
{
    UncommentBlocks(lines, name, ParameterBlockStart, ParameterBlockEnd);
}

void DisableConfigurableDomain(LineFile& lines, const std::string& name)
{
    CommentOutBlocks(lines, name, ConfigurableDomainStart, ConfigurableDomainEnd);
}

void EnableConfigurableDomain(LineFile& lines, const std::string& name)
{
    UncommentBlocks(lines, name, ConfigurableDomainStart, ConfigurableDomainEnd);
}

}  // namespace qov
