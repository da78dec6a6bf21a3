#pragma once

#include "rehearsal/FolderClaim.h"

#include <filesystem>
#include <optional>
#include <stdexcept>

namespace rehearsal {

// The folder for temporary files does not take what must go there.
struct NoCopies : std::runtime_error {
    using runtime_error::runtime_error;
};

// A folder of its own below the system's temporary one that other users cannot look into; it goes with everything in
// it. Making one removes what killed processes of this user left. Throws NoCopies when it cannot be made.
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
