#include "xmledit/LineFile.h"

#include "common/Failure.h"

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <memory>
#include <utility>

namespace qov {

namespace {

constexpr std::string_view LineEnd = "\r\n";

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

[[noreturn]] void FailNotFound(const std::string& path) { Fail("File \"" + path + "\" not found."); }

// The size of the file if it tells one, else nothing; the place where it is read stays.
std::size_t SizeOf(std::FILE* file)
{
    const long here = std::ftell(file);
    if (here < 0 || std::fseek(file, 0, SEEK_END) != 0)
        return 0;
    const long size = std::ftell(file);
    std::fseek(file, here, SEEK_SET);
    return size < 0 ? 0 : static_cast<std::size_t>(size);
}

std::string ReadBytes(std::FILE* file, const std::string& path)
{
    constexpr std::size_t FirstChunk = 0x10000;
    constexpr std::size_t Spare = LineEnd.size() + 1;  // for the last line's end, and to meet the file's end
    std::string bytes(FirstChunk, '\0');
    std::size_t size = 0;
    while (const std::size_t count = std::fread(bytes.data() + size, 1, bytes.size() - size, file)) {
        size += count;
        if (size == FirstChunk)
            bytes.resize(std::max(SizeOf(file) + Spare, 2 * size));
        else if (size == bytes.size())
            bytes.resize(2 * size);
    }
    // Some systems open a directory for reading and refuse the first read of it.
    if (std::ferror(file) != 0 && errno == EISDIR)
        FailNotFound(path);
    bytes.resize(size);
    return bytes;
}

// By the number of a stream's file: as one piece, past its buffer, so that the system has it when this returns.
bool WriteBytes(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto part = static_cast<unsigned>(std::min<std::size_t>(bytes.size(), INT_MAX));
        const int written = _write(file, bytes.data(), part);
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// As the text mode of the C runtime writes the line.
void EndLine(std::string& line)
{
    if (line.find('\n') != std::string::npos) {
        std::string translated;
        for (const char byte : line) {
            if (byte == '\n')
                translated += '\r';
            translated += byte;
        }
        line = std::move(translated);
    }
    line += LineEnd;
}

}  // namespace

LineFile::LineFile(std::string bytes) : text_(std::move(bytes))
{
    if (text_.ends_with('\n') && !text_.ends_with(LineEnd))
        text_.pop_back();
    else if (text_.empty() || text_.ends_with(LineEnd))
        return;
    text_ += LineEnd;
}

const std::string* LineFile::Edited(std::size_t line) const
{
    // Most lines are looked at below the last that was edited.
    if (edits_.empty() || line > edits_.rbegin()->first)
        return nullptr;
    const auto edit = edits_.find(line);
    return edit == edits_.end() ? nullptr : &edit->second;
}

std::string_view LineFile::operator[](std::size_t line) const
{
    if (const std::string* const edited = Edited(line))
        return *edited;
    const std::size_t end = LineFeed(line);
    const bool carriageReturn = end > line && text_[end - 1] == '\r';
    return std::string_view(text_).substr(line, end - line - (carriageReturn ? 1 : 0));
}

std::size_t LineFile::Number(std::size_t line) const
{
    return 1 +
           static_cast<std::size_t>(std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(line), '\n'));
}

std::size_t LineFile::StartOf(std::size_t position) const
{
    // Not found is one less than 0.
    return position == 0 ? 0 : text_.rfind('\n', position - 1) + 1;
}

// Among lines that were not edited. One search of the text is far quicker than one of every line.
std::optional<std::size_t> LineFile::FindInText(std::size_t from, std::size_t end, std::string_view text) const
{
    const std::string_view searched = std::string_view(text_).substr(0, end);
    for (std::size_t found = from; found < end; ++found) {
        found = searched.find(text, found);
        if (found >= end)
            break;
        const std::size_t line = StartOf(found);
        if (found + text.size() <= line + (*this)[line].size())
            return line;
    }
    return std::nullopt;
}

std::optional<std::size_t> LineFile::FindDown(std::size_t from, std::string_view text) const
{
    for (auto edit = edits_.lower_bound(from);; ++edit) {
        const std::size_t end = edit == edits_.end() ? End() : edit->first;
        if (const auto found = FindInText(from, end, text))
            return found;
        if (end == End())
            return std::nullopt;
        if (edit->second.find(text) != std::string::npos)
            return end;
        from = Next(end);
    }
}

std::optional<std::size_t> LineFile::FindUp(std::size_t from, std::string_view text) const
{
    for (std::size_t line = from;; line = StartOf(line - 1)) {
        if ((*this)[line].find(text) != std::string_view::npos)
            return line;
        if (line == 0)
            return std::nullopt;
    }
}

std::string& LineFile::Edit(std::size_t line)
{
    auto edit = edits_.lower_bound(line);
    if (edit == edits_.end() || edit->first != line) {
        const std::string_view text = (*this)[line];
        // An edit adds a little: a long line is not to be copied for it once more.
        constexpr std::size_t Spare = 64;
        std::string copy;
        copy.reserve(text.size() + Spare);
        edit = edits_.emplace_hint(edit, line, std::move(copy.append(text)));
    }
    return edit->second;
}

LineFile ReadLineFile(const std::string& path)
{
    // Binary mode: line ends are translated here, so that every system reads the same lines.
    const FilePtr file(std::fopen(path.c_str(), "rb"));
    if (!file)
        FailNotFound(path);
    return LineFile(ReadBytes(file.get(), path));
}

void WriteLineFile(LineFile lines, const std::string& path)
{
    for (auto& [line, text] : lines.edits_)
        EndLine(text);
    const FilePtr file(std::fopen(path.c_str(), "wb"));
    if (!file)
        return;
    const int number = _fileno(file.get());
    char* const text = lines.text_.data();
    auto edit = lines.edits_.begin();
    for (std::size_t line = 0, next = 0; line < lines.End(); line = next) {
        next = lines.Next(line);
        bool written = false;
        if (edit != lines.edits_.end() && edit->first == line) {
            written = WriteBytes(number, (edit++)->second);
        } else if (next - line >= LineEnd.size() && text[next - 2] == '\r') {
            written = WriteBytes(number, {text + line, next - line});
        } else {
            // A line end of LF alone is never the last: its CR LF reaches for one byte into the next line.
            const char following = std::exchange(text[next], '\n');
            text[next - 1] = '\r';
            written = WriteBytes(number, {text + line, next + 1 - line});
            text[next] = following;
        }
        if (!written)
            return;
    }
}

}  // namespace qov
