#pragma once

#include "rehearsal/FolderClaim.h"

#include <filesystem>
#include <optional>

namespace rehearsal {

// A folder of its own below the system's temporary one that other users cannot look into; it goes with everything in
// it. Making one removes what killed processes of this user left. Throws std::runtime_error when it cannot be made.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path path_;
    std::optional<FolderClaim> claim_;
};

}  // namespace rehearsal
