#include "rehearsal/TemporaryFolder.h"

#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace rehearsal {

TemporaryFolder::TemporaryFolder()
{
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    if (error)
        throw std::runtime_error("There is no temporary folder: " + error.message());
    std::random_device random;
    path_ = parent / ("qovxml-" + std::to_string(random()) + "-" + std::to_string(random()));
    const bool made = fs::create_directory(path_, error);
    if (made)
        fs::permissions(path_, fs::perms::owner_all, error);
    if (made && !error)
        return;
    const std::string reason = error ? error.message() : "there is one already";
    if (made)
        fs::remove(path_, error);
    throw std::runtime_error("The temporary folder " + path_.string() + " cannot be made: " + reason);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

}  // namespace rehearsal
