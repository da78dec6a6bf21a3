#include "LogPattern.h"

#include <cstddef>
#include <optional>
#include <sstream>

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

std::string ElementOr(const std::vector<std::string>& elements, std::size_t index, const char* otherwise)
{
    return index < elements.size() ? elements[index] : otherwise;
}

}  // namespace

bool MessageMatches(const std::string& expected, const std::string& actual)
{
    return !Mismatch(Lines(expected), Lines(actual),
                     [](const std::string& line, const std::string& other) { return line == other; });
}

std::string LogDifference(const std::vector<std::string>& expected, const std::vector<std::string>& actual)
{
    const auto mismatch = Mismatch(expected, actual, MessageMatches);
    if (!mismatch)
        return "";
    std::ostringstream text;
    text << "expected as number " << mismatch->expected + 1 << " of the pattern:\n  "
         << ElementOr(expected, mismatch->expected, "(nothing further)") << "\nbut the run has:\n  "
         << ElementOr(actual, mismatch->actual, "(nothing further)") << "\nAll of it:\n";
    for (const std::string& message : actual)
        text << "> " << message << '\n';
    return text.str();
}
