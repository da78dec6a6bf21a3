// The lines of a file as the run counts them, and where two files' lines differ.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace host {

using Lines = std::vector<std::string_view>;

// The first line with its line feed, taken from the bytes, which must not be empty.
std::string_view TakeLine(std::string_view& bytes);

// Takes away the whole lines with which both begin, byte by byte the same; gives how many bytes they are.
std::size_t TakeSameStart(std::string_view& bytes, std::string_view& other);

// Likewise those with which both end.
void DropSameEnd(std::string_view& bytes, std::string_view& other);

std::size_t CountLines(std::string_view bytes);

// Each with its line feed, the last maybe without one.
Lines SplitLines(std::string_view bytes);

// Without the line feed and the carriage return before it; one without a line feed behind it belongs to the line.
std::string_view WithoutEnd(std::string_view line);

Lines WithoutEnds(Lines lines);

// `count` lines from `start`, counted from 0, before and after.
struct Difference {
    std::size_t beforeStart;
    std::size_t beforeCount;
    std::size_t afterStart;
    std::size_t afterCount;
};

// In order, none touching the next. Of as many lines each, line N is compared with line N; otherwise all from the first
// difference to the last is one.
std::vector<Difference> Differences(const Lines& before, const Lines& after);

}  // namespace host
