#include "rehearsal/TemporaryFolder.h"

#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace rehearsal {

namespace {

constexpr auto Prefix = "qovxml-rehearsal-";

void RemoveClaimed(const fs::path& folder, std::optional<FolderClaim> claim)
{
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    // Where the claim is a file in the folder, that goes only now.
    claim.reset();
    fs::remove(folder, ignored);
}

void RemoveAbandoned(const fs::path& parent)
{
    std::error_code error;
    std::vector<fs::path> folders;
    for (fs::directory_iterator entry(parent, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        if (entry->path().filename().native().starts_with(fs::path(Prefix).native()))
            folders.push_back(entry->path());
    for (const fs::path& folder : folders)
        if (auto claim = FolderClaim::Take(folder))
            RemoveClaimed(folder, std::move(claim));
}

}  // namespace

TemporaryFolder::TemporaryFolder()
{
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    if (error)
        throw NoCopies("There is no temporary folder: " + error.message());
    RemoveAbandoned(parent);
    std::random_device random;
    // Another process may take a folder for an abandoned one before it is claimed.
    for (int tries = 0; tries < 5 && !error && !claim_; ++tries) {
        path_ = parent / (Prefix + std::to_string(random()) + "-" + std::to_string(random()));
        if (!fs::create_directory(path_, error))
            continue;
        std::error_code taken;
        fs::permissions(path_, fs::perms::owner_all, taken);
        if (!taken)
            claim_ = FolderClaim::Take(path_);
        if (!claim_)
            fs::remove(path_, taken);
    }
    if (!claim_ || error)
        throw NoCopies("The temporary folder " + path_.string() +
                       " cannot be made: " + (error ? error.message() : "it cannot be locked"));
}

TemporaryFolder::~TemporaryFolder() { RemoveClaimed(path_, std::move(claim_)); }

}  // namespace rehearsal
