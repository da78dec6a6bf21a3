// Text files as lists of lines. Bytes are never decoded; what is between two line ends stays as it is.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace qov {

// The whole text in one piece, and beside it the few lines that were edited. A line is named by a position: where it
// begins in the text as it was read, which no edit moves. Positions run from 0 in line order; End() is behind the last.
class LineFile {
public:
    // Lines end at LF; one CR directly before it belongs to the line end. A last line without a line end counts.
    explicit LineFile(std::string bytes);

    std::size_t End() const { return text_.size(); }
    std::size_t Next(std::size_t line) const { return LineFeed(line) + 1; }

    // Without its line end. Holds until the line is edited.
    std::string_view operator[](std::size_t line) const;

    // For people: counts from 1.
    std::size_t Number(std::size_t line) const;

    // The nearest line at or below (at or above) `from` that holds the text; every line holds the empty text.
    std::optional<std::size_t> FindDown(std::size_t from, std::string_view text) const;
    std::optional<std::size_t> FindUp(std::size_t from, std::string_view text) const;

    // The line, to be changed.
    std::string& Edit(std::size_t line);

private:
    friend void WriteLineFile(LineFile lines, const std::string& path);

    const std::string* Edited(std::size_t line) const;  // null: as it was read
    std::size_t LineFeed(std::size_t line) const { return text_.find('\n', line); }
    std::size_t StartOf(std::size_t position) const;
    std::optional<std::size_t> FindInText(std::size_t from, std::size_t end, std::string_view text) const;

    std::string text_;                          // every line ends with LF, the last with CR LF
    std::map<std::size_t, std::string> edits_;  // by position
};

// Throws "File "<path>" not found." when the file cannot be opened, whatever the cause; a read error after that ends
// the list quietly.
LineFile ReadLineFile(const std::string& path);

// Replaces the file: every line is followed by CR LF, and an LF byte within a line becomes CR LF too, as in the text
// mode of the Windows C runtime. Each line reaches the system before the next is written, and the first that cannot be
// written ends the file. Reports no failure; a file that cannot be opened stays as it is. What is needed of memory is
// taken before the file is emptied.
void WriteLineFile(LineFile lines, const std::string& path);

}  // namespace qov
