// The edits of the three files, and how a file is read and written. The first line of an input says which (its first
// byte) and with what name or value (the rest), the others are the lines that are edited.
#include "fuzz/Fuzz.h"
#include "support/Scratch.h"
#include "xmledit/Blocks.h"
#include "xmledit/QuotedValues.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Lines = std::vector<std::string>;
using qov::LineFile;

Lines LinesOf(const LineFile& file)
{
    Lines lines;
    for (std::size_t line = 0; line < file.End(); line = file.Next(line))
        lines.emplace_back(file[line]);
    return lines;
}

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
void RequireBlocksCommentedOut(const Lines& before, const Lines& after)
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
void ToggleBlocks(LineFile file, const std::string& name, bool disable, Edit edit, Reverse reverse)
{
    const Lines before = LinesOf(file);
    const std::string failure = Try([&] { edit(file, name); });
    const Lines after = LinesOf(file);
    disable ? RequireBlocksCommentedOut(before, after) : RequireBlocksCommentedOut(after, before);

    (void)Try([&] { edit(file, name); });
    Require(LinesOf(file) == after, "a second run changes nothing");

    bool commented = false;
    for (const std::string& line : before)
        commented = commented || line.find("<!--") != std::string::npos;
    // A block that is off already ends the edit; the way back would switch it on.
    if (!disable || commented)
        return;
    Require(Try([&] { reverse(file, name); }).empty() || !failure.empty(), "what was disabled can be enabled");
    Require(LinesOf(file) == before, "disabling and enabling gives back the bytes");
}

// The value of a tag is set on one line, up to the double quote behind it.
void RequireValueSet(const Lines& before, const Lines& after, const std::string& tag, const std::string& value)
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

void SetValue(LineFile file, const std::string& keyword, const std::string& tag, const std::string& value)
{
    const Lines before = LinesOf(file);
    const std::string failure = Try([&] { qov::SetQuotedValue(file, keyword, tag, value); });
    const Lines after = LinesOf(file);
    Require(failure.empty() || after == before, "a failure changes nothing");
    RequireValueSet(before, after, tag, value);
    // A keyword within the value that was replaced is gone.
    const auto changed = std::mismatch(before.begin(), before.end(), after.begin()).second;
    const bool found = changed == after.end() || changed->find(keyword) != std::string::npos;
    if (!failure.empty() || !found || value.find('"') != std::string::npos)
        return;
    Require(Try([&] { qov::SetQuotedValue(file, keyword, tag, value); }).empty() && LinesOf(file) == after,
            "a second run changes nothing");
}

// The bytes of a file whose lines that hold the text got a further line behind them: every line end is CR LF.
std::string Translated(const std::string& bytes, const std::string& text)
{
    std::string translated;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t feed = std::min(bytes.find('\n', at), bytes.size());
        std::string line = bytes.substr(at, feed - at);
        if (feed < bytes.size() && line.ends_with('\r'))
            line.pop_back();
        const bool edited = line.find(text) != std::string::npos;
        translated += line + "\r\n" + (edited ? text + "\r\n" : "");
        at = feed + 1;
    }
    return translated;
}

void ReadAndWrite(const std::string& bytes, const std::string& text)
{
    static const ScratchFolder folder;
    static const std::string path = folder.Path("lines.xml");
    WriteBytes(path, bytes);
    LineFile file = qov::ReadLineFile(path);
    for (std::size_t line = 0; line < file.End(); line = file.Next(line))
        if (file[line].find(text) != std::string::npos)
            file.Edit(line) += '\n' + text;
    qov::WriteLineFile(std::move(file), path);
    Require(ReadBytes(path) == Translated(bytes, text), "a file is written with its line ends translated");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), size);
    const std::string bytes = input.substr(std::min(end + 1, size));
    const LineFile lines(bytes);
    const std::string given = input.substr(std::min<std::size_t>(1, end), end - std::min<std::size_t>(1, end));

    switch (end == 0 ? '\0' : input[0]) {
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
        case 'w':
            ReadAndWrite(bytes, given);
            break;
        default:
            SetValue(lines, "", "DeviceId:", given);
    }
    return 0;
}
