// A locked folder.
#include "rehearsal/FolderClaim.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rehearsal {

std::optional<FolderClaim> FolderClaim::Take(const std::filesystem::path& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return std::nullopt;
    FolderClaim claim(descriptor);
    struct stat facts {};
    struct stat named {};
    const bool mine = ::fstat(descriptor, &facts) == 0 && facts.st_uid == ::geteuid();
    if (!mine || ::flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        return std::nullopt;
    // Who held it may have removed it.
    if (::lstat(folder.c_str(), &named) != 0 || named.st_ino != facts.st_ino || named.st_dev != facts.st_dev)
        return std::nullopt;
    return claim;
}

FolderClaim::~FolderClaim()
{
    if (handle_ != None)
        ::close(static_cast<int>(handle_));
}

}  // namespace rehearsal
