#include "host/review/EachFile.h"
#include "host/review/Report.h"
#include "host/review/UnifiedDiff.h"

namespace host {

std::vector<FileReport> FileReports(const rehearsal::Outcome& outcome)
{
    const auto reports = OfEachFile([&outcome](std::size_t index) {
        const rehearsal::FileOutcome& file = outcome.files[index];
        FileReport report{file.path, false, {}, {}};
        if (!outcome.failure && file.before && file.after && *file.before != *file.after) {
            report.changed = true;
            report.lines = LineChanges(*file.before, *file.after);
        }
        return report;
    });
    return {reports.begin(), reports.end()};
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
