#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

namespace rehearsal {

// The sign that a process works in a folder; it goes with its owner or the process. A file of each kind of platform
// (standin/, windows/) exists.
class FolderClaim {
public:
    // None: another process works in it, or it is not this user's.
    [[nodiscard]] static std::optional<FolderClaim> Take(const std::filesystem::path& folder);

    FolderClaim(FolderClaim&& other) noexcept : handle_(std::exchange(other.handle_, None)) {}
    FolderClaim& operator=(FolderClaim&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~FolderClaim();

private:
    static constexpr std::intptr_t None = -1;

    explicit FolderClaim(std::intptr_t handle) : handle_(handle) {}

    std::intptr_t handle_;
};

}  // namespace rehearsal
