#include "xmledit/LineFile.h"

#include "common/Failure.h"

#include <cerrno>
#include <cstdio>
#include <memory>

namespace qov {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

[[noreturn]] void FailNotFound(const std::string& path) { Fail("File \"" + path + "\" not found."); }

std::string ReadBytes(std::FILE* file, const std::string& path)
{
    std::string bytes;
    char chunk[4096];
    for (std::size_t count = 0; (count = std::fread(chunk, 1, sizeof(chunk), file)) > 0;)
        bytes.append(chunk, count);
    // Some systems open a directory for reading and refuse the first read of it.
    if (std::ferror(file) != 0 && errno == EISDIR)
        FailNotFound(path);
    return bytes;
}

}  // namespace

LineFile ReadLineFile(const std::string& path)
{
    // Binary mode: line ends are translated here, so that every system reads the same lines.
    const FilePtr file(std::fopen(path.c_str(), "rb"));
    if (!file)
        FailNotFound(path);
    const std::string bytes = ReadBytes(file.get(), path);

    LineFile lines;
    for (std::size_t start = 0; start < bytes.size();) {
        const std::size_t lineFeed = bytes.find('\n', start);
        if (lineFeed == std::string::npos) {
            lines.push_back(bytes.substr(start));
            break;
        }
        const bool carriageReturn = lineFeed > start && bytes[lineFeed - 1] == '\r';
        lines.push_back(bytes.substr(start, lineFeed - start - (carriageReturn ? 1 : 0)));
        start = lineFeed + 1;
    }
    return lines;
}

void WriteLineFile(LineFile lines, const std::string& path)
{
    const FilePtr file(std::fopen(path.c_str(), "wb"));
    if (!file)
        return;
    std::string bytes;
    for (std::string& line : lines) {
        line += '\n';
        bytes.clear();
        for (const char byte : line) {
            if (byte == '\n')
                bytes += '\r';
            bytes += byte;
        }
        if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() || std::fflush(file.get()) != 0)
            return;
    }
}

}  // namespace qov
