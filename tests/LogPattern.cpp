#include "LogPattern.h"

#include <cstddef>
#include <optional>

namespace {

constexpr const char* Gap = "...";

struct Progress {
    std::size_t expected = 0;
    std::size_t actual = 0;
};

// None: every actual element has its place. Else how far the expected ones were met at best.
template <class Same>
std::optional<Progress> Mismatch(const std::vector<std::string>& expected, const std::vector<std::string>& actual,
                                 Same same)
{
    Progress at;
    Progress best;
    std::optional<Progress> gap;
    while (at.actual < actual.size() || at.expected < expected.size()) {
        if (at.expected >= best.expected)
            best = at;
        if (at.expected < expected.size() && expected[at.expected] == Gap) {
            gap = at;
            ++at.expected;
        } else if (at.expected < expected.size() && at.actual < actual.size() &&
                   same(expected[at.expected], actual[at.actual])) {
            ++at.expected;
            ++at.actual;
        } else if (gap && gap->actual < actual.size()) {
            ++gap->actual;
            at = {gap->expected + 1, gap->actual};
        } else {
            return best;
        }
    }
    return std::nullopt;
}

std::vector<std::string> Lines(const std::string& message)
{
    std::vector<std::string> lines(1);
    for (const char character : message) {
        if (character == '\n')
            lines.emplace_back();
        else
            lines.back() += character;
    }
    return lines;
}

bool SameLine(const std::string& line, const std::string& other) { return line == other; }

// The expected element that was not met, and what there is instead.
std::string Described(const std::vector<std::string>& expected, const std::vector<std::string>& actual, Progress at)
{
    const std::string wanted = at.expected < expected.size() ? expected[at.expected] : "(nothing further)";
    const bool behindGap = at.expected > 0 && expected[at.expected - 1] == Gap;
    const char* const nothing = behindGap ? "(nothing like it further on)" : "(nothing further)";
    return "expected as number " + std::to_string(at.expected + 1) + " of the pattern:\n  " + wanted +
           "\nbut there is:\n  " + (at.actual < actual.size() ? actual[at.actual] : nothing) + "\n";
}

// In a message of many lines the line is told, of the actual message that meets most of them.
std::string DescribedLine(const std::string& expected, const std::vector<std::string>& actual)
{
    const std::vector<std::string> lines = Lines(expected);
    std::size_t met = 1;  // more than a gap
    std::string described;
    for (const std::string& message : actual) {
        const auto mismatch = Mismatch(lines, Lines(message), SameLine);
        if (mismatch && mismatch->expected > met) {
            met = mismatch->expected;
            described = "in its lines: " + Described(lines, Lines(message), *mismatch);
        }
    }
    return described;
}

}  // namespace

bool MessageMatches(const std::string& expected, const std::string& actual)
{
    return !Mismatch(Lines(expected), Lines(actual), SameLine);
}

std::string LogDifference(const std::vector<std::string>& expected, const std::vector<std::string>& actual)
{
    const auto mismatch = Mismatch(expected, actual, MessageMatches);
    if (!mismatch)
        return "";
    std::string text = Described(expected, actual, *mismatch);
    if (mismatch->expected < expected.size())
        text += DescribedLine(expected[mismatch->expected], actual);
    text += "All of it:\n";
    for (const std::string& message : actual)
        text += "> " + message + "\n";
    return text;
}
