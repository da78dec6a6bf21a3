// Files of one test.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

class ScratchFolder {
public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    [[nodiscard]] std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    [[nodiscard]] const std::filesystem::path& Folder() const { return folder_; }

private:
    std::filesystem::path folder_;
};

std::string ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, const std::string& bytes);

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
