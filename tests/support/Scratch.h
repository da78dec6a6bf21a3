// Files of one test.
#pragma once

#include <filesystem>
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
