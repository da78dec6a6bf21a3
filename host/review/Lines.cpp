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

// Large pieces are compared far quicker than bytes one by one.
constexpr std::size_t Piece = 4096;

}  // namespace

std::string_view TakeLine(std::string_view& bytes)
{
    const std::string_view line = bytes.substr(0, std::min(bytes.find('\n'), bytes.size() - 1) + 1);
    bytes.remove_prefix(line.size());
    return line;
}

std::size_t TakeSameStart(std::string_view& bytes, std::string_view& other)
{
    const std::size_t shorter = std::min(bytes.size(), other.size());
    std::size_t same = 0;
    while (same + Piece <= shorter && bytes.substr(same, Piece) == other.substr(same, Piece))
        same += Piece;
    while (same < shorter && bytes[same] == other[same])
        ++same;
    const std::size_t lineFeed = bytes.substr(0, same).rfind('\n');
    const std::size_t taken = lineFeed == std::string_view::npos ? 0 : lineFeed + 1;
    bytes.remove_prefix(taken);
    other.remove_prefix(taken);
    return taken;
}

void DropSameEnd(std::string_view& bytes, std::string_view& other)
{
    const std::size_t shorter = std::min(bytes.size(), other.size());
    const auto last = [](std::string_view text, std::size_t size) { return text.substr(text.size() - size); };
    std::size_t same = 0;
    while (same + Piece <= shorter && last(bytes, same + Piece).starts_with(last(other, same + Piece).substr(0, Piece)))
        same += Piece;
    while (same < shorter && last(bytes, same + 1).front() == last(other, same + 1).front())
        ++same;
    // What precedes a line feed may be another line's.
    const std::size_t lineFeed = last(bytes, same).find('\n');
    const std::size_t dropped = lineFeed == std::string_view::npos ? 0 : same - lineFeed - 1;
    bytes.remove_suffix(dropped);
    other.remove_suffix(dropped);
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
