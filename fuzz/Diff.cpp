// The diff that the host shows: applied to the old bytes it gives the new ones. An input is old and new bytes with a
// line "%" between them.
#include "fuzz/Fuzz.h"
#include "host/review/Lines.h"
#include "host/review/UnifiedDiff.h"

#include <cstdio>

namespace {

// As `patch` does it, but without guessing: every line of context and every line taken away must be there.
class Patch {
public:
    explicit Patch(std::string_view before) : old_(host::SplitLines(before)) {}

    std::string Apply(std::string_view diff)
    {
        const host::Lines lines = host::SplitLines(diff);
        Require(lines.size() > 2 && lines[0] == "--- f\n" && lines[1] == "+++ f\n", "the diff names the file");
        for (std::size_t line = 2; line < lines.size();)
            line = Hunk(lines, line);
        Copy(old_.size());
        return after_;
    }

private:
    std::size_t Hunk(const host::Lines& lines, std::size_t line)
    {
        std::size_t start = 0, count = 0, newStart = 0, newCount = 0;
        const std::string head(lines[line]);
        Require(std::sscanf(head.c_str(), "@@ -%zu,%zu +%zu,%zu @@", &start, &count, &newStart, &newCount) == 4,
                "a hunk has a head");
        Copy(count == 0 ? start : start - 1);
        const std::size_t end = done_ + count;
        const std::size_t newEnd = made_ + newCount;
        Require(newCount == 0 || made_ + 1 == newStart, "the head counts the new lines");
        for (++line; done_ < end || made_ < newEnd; ++line) {
            Require(line < lines.size(), "the hunk is as long as its head says");
            const char mark = lines[line].front();
            std::string_view text = lines[line].substr(1);
            if (line + 1 < lines.size() && lines[line + 1].starts_with('\\')) {
                text.remove_suffix(1);
                ++line;
            }
            Require(mark == '+' || (done_ < end && old_[done_] == text), "the old lines are there");
            if (mark != '+')
                ++done_;
            if (mark != '-')
                Add(text);
        }
        return line;
    }

    void Copy(std::size_t end)
    {
        Require(end <= old_.size(), "a hunk lies within the file");
        while (done_ < end)
            Add(old_[done_++]);
    }

    void Add(std::string_view line)
    {
        after_ += line;
        ++made_;
    }

    const host::Lines old_;
    std::size_t done_ = 0;
    std::size_t made_ = 0;
    std::string after_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::string_view Separator = "%\n";
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t middle = input.find(Separator);
    const std::string before(input.substr(0, middle));
    const std::string after(middle == std::string_view::npos ? "" : input.substr(middle + Separator.size()));

    const std::string diff = host::UnifiedDiff("f", before, after);
    Require(diff.empty() == (before == after), "equal bytes have no diff");
    if (!diff.empty())
        Require(Patch(before).Apply(diff) == after, "the diff gives the new bytes");
    return 0;
}
