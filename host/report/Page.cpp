#include "host/report/Page.h"

#include "host/report/Html.h"
#include "host/report/Style.h"
#include "host/review/Culprit.h"
#include "host/review/OutcomeChecks.h"
#include "host/review/Report.h"
#include "host/review/ShownText.h"
#include "host/review/Trace.h"
#include "host/review/Warnings.h"
#include "machine/MachineJson.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace host {

namespace {

using html::Element;
using html::Text;

std::string Number(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// Outcome and warnings in one line.
std::string OutcomeLine(const PageFacts& facts, const rehearsal::Outcome& outcome, const Findings& findings)
{
    if (outcome.failure)
        return Element("p class=\"outcome bad\"",
                       "The run was refused or failed: " + Text(FailureText(outcome, findings)));
    const std::vector<FileReport> files = FileReports(outcome);
    const auto changed = static_cast<std::size_t>(
        std::count_if(files.begin(), files.end(), [](const FileReport& file) { return file.changed; }));
    std::string line = !facts.preview ? "The run went through on the example files."
                       : changed == 0 ? "Nothing to change."
                                      : "Would change " + Number(changed, "file") + ".";
    const std::vector<std::string> warnings = Warnings(outcome, findings);
    line += " " + (warnings.empty() ? "No warnings." : Number(warnings.size(), "warning") + ":");
    for (const std::string& warning : warnings)
        line += " " + Text(warning);
    return Element(warnings.empty() ? "p class=\"outcome good\"" : "p class=\"outcome warn\"", line);
}

std::string AtFault(const machine::MachineDescription& machine, const rehearsal::Outcome& outcome,
                    const Findings& findings)
{
    std::string list;
    const auto culprits = FindCulprits(machine, outcome, findings);
    for (const std::string& line : culprits.lines)
        list += Element("p class=\"outcome bad\"", "At fault: " + Text(line)) + "\n";
    return list;
}

// A line of a file: its tabs stay.
std::string LineText(const std::string& line)
{
    std::string text;
    std::istringstream pieces(line);
    for (std::string piece; std::getline(pieces, piece, '\t');)
        text += (text.empty() ? "" : "\t") + Text(piece);
    return text;
}

// Of "@@ -3,4 +3 @@": behind '-' four lines, behind '+' one.
std::size_t LinesBehind(const std::string& head, char sign)
{
    const std::size_t end = head.find(' ', head.find(sign));
    const std::size_t comma = head.find(',', head.find(sign));
    return comma < end ? std::stoul(head.substr(comma + 1)) : 1;
}

// Tells the heads of a diff from lines of the file that look like one.
class DiffReader {
public:
    // Null: a line that stays.
    const char* LookOf(const std::string& line)
    {
        if (before_ + after_ == 0) {
            if (line.starts_with("@@ ")) {
                before_ = LinesBehind(line, '-');
                after_ = LinesBehind(line, '+');
            }
            return line.starts_with('\\') ? nullptr : "span class=\"head\"";
        }
        if (line.starts_with('\\'))
            return nullptr;
        before_ -= line.starts_with('+') || before_ == 0 ? 0 : 1;
        after_ -= line.starts_with('-') || after_ == 0 ? 0 : 1;
        return line.starts_with('-') ? "span class=\"minus\"" : line.starts_with('+') ? "span class=\"plus\"" : nullptr;
    }

private:
    std::size_t before_ = 0, after_ = 0;  // lines left of the hunk
};

std::string DiffSection(const rehearsal::Outcome& outcome)
{
    const std::string diff = Diff(outcome);
    if (diff.empty())
        return {};
    std::string lines;
    std::istringstream text(diff);
    DiffReader reader;
    for (std::string line; std::getline(text, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        const char* const look = reader.LookOf(line);
        lines += (look == nullptr ? LineText(line) : Element(look, LineText(line))) + "\n";
    }
    return Element("h2", "What would change") + "\n" + Element("pre class=\"diff\"", lines) + "\n";
}

std::string TraceSection(const rehearsal::Outcome& outcome)
{
    std::string lines;
    std::size_t failed = 0;
    const std::vector<TraceLine> trace = TraceLines(ReadTrace(outcome));
    for (const TraceLine& line : trace) {
        lines += (line.failed ? Element("span class=\"failed\"", Text(line.text)) : Text(line.text)) + "\n";
        failed += line.failed ? 1 : 0;
    }
    return Element("h2", "Trace") + "\n" +
           Element("details", Element("summary", Number(trace.size(), "line") + ", " + Number(failed, "failed call")) +
                                  "\n" + Element("pre", lines)) +
           "\n";
}

std::string SnapshotSection(const machine::MachineDescription& machine)
{
    std::string content;
    try {
        const std::string json = machine::WriteMachine(machine);
        content =
            Element(R"(a download="machine.json" href="data:application/json;base64,)" + html::Base64(json) + "\"",
                    "Save the description as machine.json") +
            " (" + Number(json.size(), "byte") + "); <code>qovxml-configure trace --machine machine.json</code> " +
            "makes the same run on it anywhere.";
    } catch (const std::runtime_error& failure) {
        content = "It cannot be written: " + Text(failure.what());
    }
    return Element("h2", "The machine") + "\n" + Element("p", content) + "\n";
}

std::string Head(const PageFacts& facts)
{
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'\">\n" +
           Element("title", "QovXml report: " + Text(facts.machine)) + "\n" + Element("style", html::Style) +
           "\n</head>\n<body>\n";
}

}  // namespace

std::string ReportPage(const PageFacts& facts, const machine::MachineDescription& machine,
                       const rehearsal::Outcome& outcome, const Findings& findings,
                       const std::vector<EndpointView>& endpoints)
{
    std::string page = Head(facts);
    page += Element("header", Element("h1", "QovXml report") +
                                  Element("p class=\"soft\"",
                                          Text("Machine: " + facts.machine) + "<br>" +
                                              Text(facts.time + ", " + facts.program + " on " + facts.system))) +
            "\n<main>\n" + OutcomeLine(facts, outcome, findings) + "\n" + AtFault(machine, outcome, findings);
    page += Element("h2", Number(endpoints.size(), "endpoint")) + "\n";
    for (const EndpointView& endpoint : endpoints)
        page += EndpointArticle(endpoint);
    if (facts.preview)
        page += DiffSection(outcome);
    return page + TraceSection(outcome) + SnapshotSection(machine) + "</main>\n</body>\n</html>\n";
}

}  // namespace host
