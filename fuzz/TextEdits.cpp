// The edits of the three files. The first line of an input says which (its first byte) and with what name or value (the
// rest), the others are the lines that are edited.
#include "fuzz/Fuzz.h"
#include "xmledit/Blocks.h"
#include "xmledit/QuotedValues.h"

#include <sstream>
#include <stdexcept>

namespace {

using qov::LineFile;

// What it throws; empty: it completed.
template <class Edit>
std::string Try(Edit edit)
{
    try {
        edit();
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
    return {};
}

// Whole blocks were commented out, one after the other, and nothing else was done: a block that fails is left alone.
void RequireBlocksCommentedOut(const LineFile& before, const LineFile& after)
{
    bool inside = false;
    Require(before.size() == after.size(), "the number of lines is kept");
    for (std::size_t line = 0; line < before.size(); ++line) {
        const bool starts = after[line].size() > before[line].size() && after[line].starts_with("<!--" + before[line]);
        const std::string started = (starts ? "<!--" : "") + before[line];
        const bool ends = after[line] != started;
        Require(!ends || after[line] == started + "-->", "nothing but markers is put in");
        Require(!(starts && inside) && !(ends && !starts && !inside), "every start has its end");
        inside = (inside || starts) && !ends;
    }
    Require(!inside, "the last block is ended");
}

template <class Edit, class Reverse>
void ToggleBlocks(const LineFile& lines, const std::string& name, bool disable, Edit edit, Reverse reverse)
{
    LineFile edited = lines;
    const std::string failure = Try([&] { edit(edited, name); });
    disable ? RequireBlocksCommentedOut(lines, edited) : RequireBlocksCommentedOut(edited, lines);

    LineFile twice = edited;
    (void)Try([&] { edit(twice, name); });
    Require(twice == edited, "a second run changes nothing");

    bool commented = false;
    for (const std::string& line : lines)
        commented = commented || line.find("<!--") != std::string::npos;
    // A block that is off already ends the edit; the way back would switch it on.
    if (!disable || commented)
        return;
    Require(Try([&] { reverse(edited, name); }).empty() || !failure.empty(), "what was disabled can be enabled");
    Require(edited == lines, "disabling and enabling gives back the bytes");
}

// The value of a tag is set on one line, up to the double quote behind it.
void RequireValueSet(const LineFile& before, const LineFile& after, const std::string& tag, const std::string& value)
{
    unsigned changed = 0;
    Require(before.size() == after.size(), "the number of lines is kept");
    for (std::size_t line = 0; line < before.size(); ++line) {
        if (before[line] == after[line])
            continue;
        ++changed;
        const std::size_t start = before[line].find(tag);
        Require(start != std::string::npos, "a line without the tag is left alone");
        const std::size_t quote = before[line].find('"', start);
        Require(quote != std::string::npos, "a value without an end is left alone");
        Require(after[line] == before[line].substr(0, start) + tag + value + before[line].substr(quote),
                "nothing beside the value changes");
    }
    Require(changed <= 1, "one value is set");
}

void SetValue(const LineFile& lines, const std::string& keyword, const std::string& tag, const std::string& value)
{
    LineFile edited = lines;
    const std::string failure = Try([&] { qov::SetQuotedValue(edited, keyword, tag, value); });
    Require(failure.empty() || edited == lines, "a failure changes nothing");
    RequireValueSet(lines, edited, tag, value);
    if (!failure.empty() || value.find('"') != std::string::npos)
        return;
    LineFile twice = edited;
    Require(Try([&] { qov::SetQuotedValue(twice, keyword, tag, value); }).empty() && twice == edited,
            "a second run changes nothing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::istringstream input(std::string(reinterpret_cast<const char*>(data), size));
    std::string first;
    LineFile lines;
    std::getline(input, first);
    for (std::string line; std::getline(input, line);)
        lines.push_back(line);
    const std::string given = first.empty() ? "" : first.substr(1);

    switch (first.empty() ? '\0' : first[0]) {
        case 'p':
            ToggleBlocks(lines, given, true, qov::DisableParameterBlock, qov::EnableParameterBlock);
            break;
        case 'P':
            ToggleBlocks(lines, given, false, qov::EnableParameterBlock, qov::DisableParameterBlock);
            break;
        case 'c':
            ToggleBlocks(lines, given, true, qov::DisableConfigurableDomain, qov::EnableConfigurableDomain);
            break;
        case 'C':
            ToggleBlocks(lines, given, false, qov::EnableConfigurableDomain, qov::DisableConfigurableDomain);
            break;
        case 's':
            SetValue(lines, "Subeffects_SpeechMode", "ParamId:", given);
            break;
        default:
            SetValue(lines, "", "DeviceId:", given);
    }
    return 0;
}
