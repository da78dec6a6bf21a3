#pragma once

#include <filesystem>
#include <optional>

// While it lives, the folder is the one for temporary files of this process.
class TemporaryRoot {
public:
    explicit TemporaryRoot(const std::filesystem::path& folder);
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;
    ~TemporaryRoot();

private:
    std::optional<std::filesystem::path> before_;
};
