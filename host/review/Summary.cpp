#include "host/review/Report.h"
#include "host/review/ShownText.h"

#include <algorithm>
#include <map>

namespace host {

namespace {

// A table under a heading; the last column is as wide as it likes.
using Row = std::vector<std::string>;

// No line begins with what comes from the machine or is a path: `patch` must not take one for the head of a diff.
std::string Table(const std::string& heading, const std::vector<Row>& rows)
{
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            widths[column] = std::max(widths[column], Width(row[column]));
    }
    std::string text = heading + ":\n";
    for (const Row& row : rows) {
        std::string line = " ";
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += " " + row[column];
            if (column + 1 < row.size())
                line += std::string(widths[column] - Width(row[column]) + 1, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::string Count(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string MachineLine(const Findings& findings)
{
    std::string text = "Machine: ";
    text += findings.generation == WindowsGeneration::Windows8Point1OrGreater ? "Windows 8.1 or later, "
            : findings.generation == WindowsGeneration::Windows8Point0OrLower ? "Windows 8.0 or earlier, "
                                                                              : "";
    const auto makers = std::count_if(findings.modules.begin(), findings.modules.end(),
                                      [](const FoundModule& module) { return !module.makersName.empty(); });
    return text + Count(findings.deviceCount.value_or(0), "active endpoint") + ", " +
           Count(findings.modules.size(), "audio module") + ", " + std::to_string(makers) + " of them by Orvex\n";
}

std::string ModulesOfMaker(const Findings& findings)
{
    std::vector<Row> rows;
    std::string last;
    for (const FoundModule& module : findings.modules) {
        if (module.makersName.empty())
            continue;
        const std::string& name = module.friendlyName.empty() ? module.endpointName : module.friendlyName;
        std::string place = module.location == "FW" ? "firmware, " + module.type : module.type + " effect";
        if (module.level == "Wrapped")
            place += ", wrapped";
        if (IsPassedOver(module, findings.generation))
            place += ", not used on this Windows";
        rows.push_back({module.makersName, place, "on " + Harmless(name)});
    }
    return rows.empty() ? "" : Table("Modules by Orvex", rows);
}

std::string StateOf(const BlockState& block) { return block.present ? block.on ? "on" : "off" : "missing"; }

std::string Blocks(const Findings& findings)
{
    std::vector<Row> rows{{"", "section", "domain"}};
    for (const char* const name : BlockNames) {
        Row row{name, "", ""};
        for (const BlockState& block : findings.blocks)
            if (block.name == name)
                row[block.file == SettingsFile ? 2 : 1] = StateOf(block);
        rows.push_back(std::move(row));
    }
    return findings.blocks.empty() ? "" : Table("Sections and domains", rows);
}

std::string Values(const Findings& findings)
{
    std::vector<Row> rows;
    for (const ValueSet& value : findings.values)
        rows.push_back({value.name, Harmless(value.value)});
    return rows.empty() ? "" : Table("Values", rows);
}

std::string Files(const Report& report)
{
    const std::string changed = report.outcome == "done" ? "changed" : "would change";
    std::vector<Row> rows;
    for (const FileReport& file : report.files) {
        Row row{file.changed ? changed : "unchanged", "", Harmless(file.path)};
        if (file.changed)
            row[1] = file.lines.empty() ? "line ends" : Count(file.lines.size(), "line");
        if (file.backup)
            row[2] += ", backup " + Harmless(*file.backup);
        rows.push_back(std::move(row));
    }
    const bool any =
        std::any_of(report.files.begin(), report.files.end(), [](const FileReport& file) { return file.changed; });
    return Table(any || report.message ? "Files" : "Nothing to change", rows);
}

std::string ListOf(const std::string& heading, const std::vector<std::string>& lines)
{
    std::vector<Row> rows;
    for (const std::string& line : lines)
        rows.push_back({Harmless(line)});
    return rows.empty() ? "" : Table(heading, rows);
}

}  // namespace

std::string Summary(const Report& report, const Findings& findings)
{
    return MachineLine(findings) + ModulesOfMaker(findings) + Blocks(findings) + Values(findings) + Files(report) +
           ListOf("Warnings", report.warnings) + ListOf("At fault", report.atFault) +
           (report.atFault.empty() ? "" : ListOf("More is told by", {report.moreBy}));
}

}  // namespace host
