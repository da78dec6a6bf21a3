#include "host/review/LineChanges.h"

#include "host/review/Lines.h"

#include <algorithm>
#include <string_view>

namespace host {

namespace {

std::string Join(const Lines& lines, std::size_t start, std::size_t count)
{
    std::string text;
    for (std::size_t index = start; index < start + count; ++index) {
        if (index > start)
            text += '\n';
        text += lines[index];
    }
    return text;
}

}  // namespace

std::vector<LineChange> LineChanges(const std::string& before, const std::string& after)
{
    const Lines old = WithoutEnds(SplitLines(before));
    const Lines now = WithoutEnds(SplitLines(after));
    std::vector<LineChange> changes;
    for (const Difference& difference : Differences(old, now)) {
        if (difference.beforeCount != difference.afterCount) {
            changes.push_back({difference.beforeStart + 1, Join(old, difference.beforeStart, difference.beforeCount),
                               Join(now, difference.afterStart, difference.afterCount)});
            continue;
        }
        for (std::size_t index = 0; index < difference.beforeCount; ++index)
            changes.push_back({difference.beforeStart + index + 1, std::string(old[difference.beforeStart + index]),
                               std::string(now[difference.afterStart + index])});
    }
    return changes;
}

bool HasBareLineFeed(const std::string& bytes)
{
    const Lines lines = SplitLines(bytes);
    return std::any_of(lines.begin(), lines.end(),
                       [](std::string_view line) { return line.ends_with('\n') && !line.ends_with("\r\n"); });
}

}  // namespace host
