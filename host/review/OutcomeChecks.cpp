#include "host/review/OutcomeChecks.h"

#include "host/review/Advice.h"
#include "host/review/EachFile.h"
#include "host/review/Lines.h"
#include "host/review/ShownText.h"
#include "host/review/WellFormed.h"

#include <algorithm>
#include <string_view>

namespace host {

namespace {

using rehearsal::FileOutcome;

std::string Told(const std::string& path, const std::string& problem, std::string_view whatToDo)
{
    return Harmless(path) + ": " + problem + ". What to do: " + std::string(whatToDo);
}

std::optional<std::string> XmlProblem(const FileOutcome& file)
{
    const auto fault = WellFormedFault(*file.after);
    if (!fault || WellFormedFault(*file.before))
        return std::nullopt;
    return Told(file.path,
                "it would not be well-formed XML any more: line " + std::to_string(fault->line) + ": " + fault->reason,
                "Give each block lines of its own, with no other markup on them and no \"--\" inside it; a value with "
                "\"<\" comes from the machine's driver.");
}

// What a full disk leaves: every whole line that the run writes ends with a line feed. Lines that are all explained are
// no fewer than before.
bool IsCutShort(const FileOutcome& file, bool unexplained)
{
    const std::string& after = *file.after;
    return (!after.empty() && !after.ends_with('\n')) || (unexplained && CountLines(after) < CountLines(*file.before));
}

// Comment markers where switching a block puts them.
std::string_view WithoutMarkers(std::string_view line)
{
    if (line.starts_with("<!--"))
        line.remove_prefix(4);
    if (line.ends_with("-->"))
        line.remove_suffix(3);
    return line;
}

// The line with the value in the place of the old one; none when the run would not have set it there.
std::optional<std::string> WithValue(const std::string& line, const ValueSet& value)
{
    const std::size_t tag = line.find(value.tag);
    const std::size_t quote = tag == std::string::npos ? tag : line.find('"', tag);
    if (quote == std::string::npos || line.find(value.keyword) == std::string::npos)
        return std::nullopt;
    return line.substr(0, tag) + value.tag + value.value + line.substr(quote);
}

// What edits can make of the line, itself first; with a value of several lines it is several.
std::vector<std::string> Outcomes(std::string_view line, const std::vector<ValueSet>& values)
{
    std::vector<std::string> outcomes{std::string(line)};
    for (const ValueSet& value : values)
        for (std::size_t index = outcomes.size(); index-- > 0;)
            if (auto edited = WithValue(outcomes[index], value))
                outcomes.push_back(std::move(*edited));
    return outcomes;
}

// Whether the first lines are the expected text, but for the markers; takes them from the bytes.
bool TakeLines(std::string_view& bytes, const std::string& expected)
{
    std::string_view rest = bytes;
    std::string text;
    for (auto count = std::count(expected.begin(), expected.end(), '\n'); count >= 0; --count) {
        if (rest.empty())
            return false;
        text += WithoutEnd(TakeLine(rest));
        if (count > 0)
            text += '\n';
    }
    if (text != expected && WithoutMarkers(text) != WithoutMarkers(expected))
        return false;
    bytes = rest;
    return true;
}

// Takes from both the lines that are the same, line ends aside, with which they begin.
void TakeSameLines(std::string_view& before, std::string_view& after)
{
    while (!before.empty() && !after.empty()) {
        if (TakeSameStart(before, after) > 0)
            continue;
        std::string_view beforeRest = before;
        std::string_view afterRest = after;
        if (WithoutEnd(TakeLine(beforeRest)) != WithoutEnd(TakeLine(afterRest)))
            return;
        before = beforeRest;
        after = afterRest;
    }
}

// Why the lines are not those that the edits make of the ones before; nothing: they are.
std::optional<std::string> UnexplainedLine(const FileOutcome& file, const std::vector<ValueSet>& values)
{
    constexpr std::string_view Report = "Nothing was changed. Report this, with the log and the three files.";
    std::string_view before = *file.before;
    std::string_view after = *file.after;
    for (;;) {
        TakeSameLines(before, after);
        if (before.empty())
            break;
        const std::size_t place = file.before->size() - before.size();
        const std::vector<std::string> outcomes = Outcomes(WithoutEnd(TakeLine(before)), values);
        if (std::none_of(outcomes.begin(), outcomes.end(),
                         [&](const std::string& outcome) { return TakeLines(after, outcome); }))
            return Told(file.path,
                        "line " + std::to_string(CountLines(std::string_view(*file.before).substr(0, place)) + 1) +
                            " would change in a way that no edit explains",
                        Report);
    }
    if (!after.empty())
        return Told(file.path, "it would have more lines than before", Report);
    return std::nullopt;
}

std::optional<std::string> LineProblem(const FileOutcome& file, const std::vector<ValueSet>& values)
{
    auto problem = UnexplainedLine(file, values);
    if (IsCutShort(file, problem.has_value()))
        return Told(file.path, "its copy was cut short at line " + std::to_string(CountLines(*file.after)),
                    "Make room on the disk that holds the folder for temporary files.");
    return problem;
}

std::optional<std::string> FileProblemOf(const FileOutcome& file, const std::vector<ValueSet>& values)
{
    if (!file.before || (file.after && *file.after == *file.before))
        return std::nullopt;
    if (!file.after)
        return Told(file.path, "its copy was lost",
                    "See to it that nothing clears the folder for temporary files meanwhile.");
    auto problem = LineProblem(file, values);
    return problem ? problem : XmlProblem(file);
}

}  // namespace

std::optional<std::string> OutcomeProblem(const rehearsal::Outcome& outcome, const Findings& findings)
{
    const auto problems = OfEachFile([&](std::size_t index) {
        std::vector<ValueSet> values;
        std::copy_if(findings.values.begin(), findings.values.end(), std::back_inserter(values),
                     [index](const ValueSet& value) { return value.file == index; });
        return FileProblemOf(outcome.files[index], values);
    });
    const auto found =
        std::find_if(problems.begin(), problems.end(), [](const auto& problem) { return problem.has_value(); });
    return found == problems.end() ? std::nullopt : *found;
}

std::string FailureText(const rehearsal::Outcome& outcome, const Findings& findings)
{
    const std::string& message = outcome.failure.value();
    const std::string path = findings.fileUnderEdit ? Harmless(outcome.files[*findings.fileUnderEdit].path) + ": " : "";
    const std::string_view end = message.ends_with('.') ? " " : ". ";
    return path + Harmless(message) + std::string(end) + "What to do: " + std::string(WhatToDo(message));
}

}  // namespace host
