#include "host/review/UnifiedDiff.h"

#include "host/review/Lines.h"
#include "host/review/ShownText.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace host {

namespace {

constexpr std::size_t Context = 3;

// As a string literal of C when it holds what would end it or be lost on the way.
std::string QuotedName(const std::string& path)
{
    const bool plain = Harmless(path) == path && path.find_first_of(" \"\\") == std::string::npos;
    if (plain)
        return path;
    std::string quoted = "\"";
    for (const char byte : path) {
        if (byte == '"' || byte == '\\') {
            quoted += {'\\', byte};
        } else if (byte >= ' ' && byte <= '~') {
            quoted += byte;
        } else {
            char octal[5];
            std::snprintf(octal, sizeof(octal), "\\%03o", static_cast<unsigned int>(static_cast<unsigned char>(byte)));
            quoted += octal;
        }
    }
    return quoted + '"';
}

void AppendLines(std::string& text, char mark, const Lines& lines, std::size_t start, std::size_t end)
{
    for (std::size_t index = start; index < end; ++index) {
        text += mark;
        text += lines[index];
        if (!lines[index].ends_with('\n'))
            text += "\n\\ No newline at end of file\n";
    }
}

std::string Range(std::size_t start, std::size_t count)
{
    return std::to_string(count == 0 ? start : start + 1) + "," + std::to_string(count);
}

using Iterator = std::vector<Difference>::const_iterator;

// One hunk of the differences from `first` up to `end`, whose contexts touch.
std::string Hunk(const Lines& before, const Lines& after, Iterator first, Iterator end)
{
    const Difference& last = *(end - 1);
    const std::size_t lead = std::min(first->beforeStart, Context);
    const std::size_t lastEnd = last.beforeStart + last.beforeCount;
    const std::size_t trail = std::min(before.size() - lastEnd, Context);
    const std::size_t beforeStart = first->beforeStart - lead;
    const std::size_t afterStart = first->afterStart - lead;

    std::string hunk = "@@ -" + Range(beforeStart, lastEnd + trail - beforeStart) + " +" +
                       Range(afterStart, last.afterStart + last.afterCount + trail - afterStart) + " @@\n";
    std::size_t done = beforeStart;
    for (auto difference = first; difference != end; ++difference) {
        AppendLines(hunk, ' ', before, done, difference->beforeStart);
        done = difference->beforeStart + difference->beforeCount;
        AppendLines(hunk, '-', before, difference->beforeStart, done);
        AppendLines(hunk, '+', after, difference->afterStart, difference->afterStart + difference->afterCount);
    }
    AppendLines(hunk, ' ', before, done, done + trail);
    return hunk;
}

}  // namespace

std::string UnifiedDiff(const std::string& path, const std::string& before, const std::string& after)
{
    if (before == after)
        return {};
    const Lines old = SplitLines(before);
    const Lines now = SplitLines(after);
    const std::vector<Difference> differences = Differences(old, now);

    const std::string name = QuotedName(path);
    std::string diff = "--- " + name + "\n+++ " + name + "\n";
    for (auto first = differences.begin(); first != differences.end();) {
        auto end = first + 1;
        while (end != differences.end() &&
               end->beforeStart - ((end - 1)->beforeStart + (end - 1)->beforeCount) <= 2 * Context)
            ++end;
        diff += Hunk(old, now, first, end);
        first = end;
    }
    return diff;
}

}  // namespace host
