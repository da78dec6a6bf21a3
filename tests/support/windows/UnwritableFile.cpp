// Another user of the file lets nobody write: that stops an administrator too, whom a read-only file may not.
#include "support/UnwritableFile.h"

#include <windows.h>

#include <stdexcept>

namespace fs = std::filesystem;

struct UnwritableFile::Hold {
    explicit Hold(const fs::path& path)
        : file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                           nullptr))
    {
        if (file == INVALID_HANDLE_VALUE)
            throw std::runtime_error("cannot hold " + path.string());
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold() { CloseHandle(file); }

    HANDLE file;
};

UnwritableFile::UnwritableFile(const fs::path& path) : hold_(std::make_unique<Hold>(path)) {}

UnwritableFile::~UnwritableFile() = default;
