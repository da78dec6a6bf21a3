#include "host/review/Lines.h"

#include <algorithm>

namespace host {

namespace {

std::vector<Difference> DifferencesByLine(const Lines& before, const Lines& after)
{
    std::vector<Difference> differences;
    for (std::size_t index = 0; index < before.size(); ++index) {
        if (before[index] == after[index])
            continue;
        if (!differences.empty() && differences.back().beforeStart + differences.back().beforeCount == index) {
            ++differences.back().beforeCount;
            ++differences.back().afterCount;
        } else {
            differences.push_back({index, 1, index, 1});
        }
    }
    return differences;
}

}  // namespace

std::string_view TakeLine(std::string_view& bytes)
{
    const std::string_view line = bytes.substr(0, std::min(bytes.find('\n'), bytes.size() - 1) + 1);
    bytes.remove_prefix(line.size());
    return line;
}

std::size_t CountLines(std::string_view bytes)
{
    std::size_t count = 0;
    for (; !bytes.empty(); ++count)
        TakeLine(bytes);
    return count;
}

Lines SplitLines(std::string_view bytes)
{
    Lines lines;
    while (!bytes.empty())
        lines.push_back(TakeLine(bytes));
    return lines;
}

std::string_view WithoutEnd(std::string_view line)
{
    if (!line.ends_with('\n'))
        return line;
    line.remove_suffix(1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

Lines WithoutEnds(Lines lines)
{
    std::transform(lines.begin(), lines.end(), lines.begin(), WithoutEnd);
    return lines;
}

std::vector<Difference> Differences(const Lines& before, const Lines& after)
{
    if (before.size() == after.size())
        return DifferencesByLine(before, after);
    const std::size_t shorter = std::min(before.size(), after.size());
    std::size_t head = 0;
    while (head < shorter && before[head] == after[head])
        ++head;
    std::size_t tail = 0;
    while (tail < shorter - head && before[before.size() - 1 - tail] == after[after.size() - 1 - tail])
        ++tail;
    return {{head, before.size() - head - tail, head, after.size() - head - tail}};
}

}  // namespace host
