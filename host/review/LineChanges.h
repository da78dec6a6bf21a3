// What an edit made of the lines of one file. Line N of the original is compared with line N of what became of it; only
// where a value brought line feeds along does everything between the first and the last difference count as one change.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

struct LineChange {
    std::size_t line = 0;  // of the original, from 1
    // Without the line end. Of several lines (see above) the line ends between them are line feeds.
    std::string before;
    std::string after;
};

// The lines that differ, line ends aside.
std::vector<LineChange> LineChanges(const std::string& before, const std::string& after);

// Whether any line ends with a bare line feed.
bool HasBareLineFeed(const std::string& bytes);

}  // namespace host
