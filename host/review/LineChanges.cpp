#include "host/review/LineChanges.h"

#include "host/review/Lines.h"

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

// Of as many lines each, the first of which has this number.
std::vector<LineChange> ChangesByLine(std::string_view before, std::string_view after, std::size_t number)
{
    std::vector<LineChange> changes;
    for (; !before.empty(); ++number) {
        const std::string_view old = WithoutEnd(TakeLine(before));
        const std::string_view now = WithoutEnd(TakeLine(after));
        if (old != now)
            changes.push_back({number, std::string(old), std::string(now)});
    }
    return changes;
}

}  // namespace

std::vector<LineChange> LineChanges(const std::string& before, const std::string& after)
{
    std::string_view middle = before;
    std::string_view middleAfter = after;
    const std::size_t start = TakeSameStart(middle, middleAfter);
    DropSameEnd(middle, middleAfter);
    if (CountLines(middle) == CountLines(middleAfter))
        return ChangesByLine(middle, middleAfter, CountLines(std::string_view(before).substr(0, start)) + 1);
    const Lines old = WithoutEnds(SplitLines(before));
    const Lines now = WithoutEnds(SplitLines(after));
    std::vector<LineChange> changes;
    for (const Difference& difference : Differences(old, now))
        changes.push_back({difference.beforeStart + 1, Join(old, difference.beforeStart, difference.beforeCount),
                           Join(now, difference.afterStart, difference.afterCount)});
    return changes;
}

bool HasBareLineFeed(const std::string& bytes)
{
    for (std::size_t found = bytes.find('\n'); found != std::string::npos; found = bytes.find('\n', found + 1))
        if (found == 0 || bytes[found - 1] != '\r')
            return true;
    return false;
}

}  // namespace host
