#pragma once

#include <filesystem>
#include <memory>

// While it lives, the file can be read but not written.
class UnwritableFile {
public:
    explicit UnwritableFile(const std::filesystem::path& path);
    UnwritableFile(const UnwritableFile&) = delete;
    UnwritableFile& operator=(const UnwritableFile&) = delete;
    ~UnwritableFile();

private:
    struct Hold;  // the system's means
    std::unique_ptr<Hold> hold_;
};
