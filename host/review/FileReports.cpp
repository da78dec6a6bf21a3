#include "host/review/Report.h"
#include "host/review/UnifiedDiff.h"

namespace host {

std::vector<FileReport> FileReports(const rehearsal::Outcome& outcome)
{
    std::vector<FileReport> reports;
    for (const rehearsal::FileOutcome& file : outcome.files) {
        FileReport report{file.path, false, {}, {}};
        if (!outcome.failure && file.before && file.after && *file.before != *file.after) {
            report.changed = true;
            report.lines = LineChanges(*file.before, *file.after);
        }
        reports.push_back(std::move(report));
    }
    return reports;
}

std::string Diff(const rehearsal::Outcome& outcome)
{
    std::string diff;
    for (const rehearsal::FileOutcome& file : outcome.files)
        if (!outcome.failure && file.before && file.after)
            diff += UnifiedDiff(file.path, *file.before, *file.after);
    return diff;
}

}  // namespace host
