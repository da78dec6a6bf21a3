#include "host/files/NewFile.h"

#include "host/files/standin/Handle.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace host::platform {

namespace {

int AsDescriptor(std::intptr_t handle) { return static_cast<int>(handle); }

// False: somebody holds it.
bool Lock(int descriptor)
{
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return true;
    Check(errno == EWOULDBLOCK);
    return false;
}

// What only an administrator or the kernel sets is left to them.
bool MayStayBehind(std::string_view name) { return name.starts_with("security.") || name.starts_with("trusted."); }

bool TakeExtendedAttribute(const char* original, int descriptor, const char* name)
{
    const ssize_t size = ::getxattr(original, name, nullptr, 0);
    if (size < 0)
        return false;
    std::vector<char> value(static_cast<std::size_t>(size));
    return ::getxattr(original, name, value.data(), value.size()) == size &&
           ::fsetxattr(descriptor, name, value.data(), value.size(), 0) == 0;
}

bool TakeExtendedAttributes(const char* original, int descriptor)
{
    // A folder's default ACL is not the original's.
    ::fremovexattr(descriptor, "system.posix_acl_access");
    const ssize_t size = ::listxattr(original, nullptr, 0);
    if (size < 0)
        return errno == ENOTSUP;
    std::vector<char> names(static_cast<std::size_t>(size));
    if (::listxattr(original, names.data(), names.size()) != size)
        return false;
    for (const char* name = names.data(); name < names.data() + size; name += std::strlen(name) + 1)
        if (!TakeExtendedAttribute(original, descriptor, name) && !MayStayBehind(name))
            return false;
    return true;
}

}  // namespace

std::optional<FileLock> FileLock::Take(const std::string& path)
{
    for (;;) {
        // Some network file systems lock only what can be written.
        Descriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
        if (!file)
            file = Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        Check(bool(file));
        if (!Lock(file.Get()))
            return std::nullopt;
        struct stat facts {};
        Check(::fstat(file.Get(), &facts) == 0);
        // Who held it may have put another file in its place.
        if (Look(path).identity == Identity{facts.st_dev, facts.st_ino})
            return FileLock(file.Release());
    }
}

FileLock::FileLock(FileLock&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept
{
    std::swap(handle_, other.handle_);
    return *this;
}

FileLock::~FileLock() { const Descriptor closed(AsDescriptor(handle_)); }

NewFile::NewFile(std::string path, const std::string& original)
    : path_(std::move(path)),
      original_(original),
      handle_(::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR))
{
    Check(handle_ >= 0);
}

NewFile::~NewFile()
{
    Close();
    if (!renamed_)
        ::unlink(path_.c_str());
}

void NewFile::Close() { const Descriptor closed(AsDescriptor(std::exchange(handle_, -1))); }

void NewFile::Write(const std::string& bytes) const
{
    WriteAll(AsDescriptor(handle_), bytes);
    // Starts only; Flush waits, and tells what fails.
    ::sync_file_range(AsDescriptor(handle_), 0, 0, SYNC_FILE_RANGE_WRITE);
}

bool NewFile::TakeAttributes()
{
    const int descriptor = AsDescriptor(handle_);
    struct stat wanted {};
    struct stat facts {};
    Check(::stat(original_.c_str(), &wanted) == 0 && ::fstat(descriptor, &facts) == 0);
    const bool owned = (facts.st_uid == wanted.st_uid && facts.st_gid == wanted.st_gid) ||
                       ::fchown(descriptor, wanted.st_uid, wanted.st_gid) == 0;
    if (!owned || !TakeExtendedAttributes(original_.c_str(), descriptor))
        return false;
    // Last, since giving a file away takes bits of its mode.
    return ::fchmod(descriptor, wanted.st_mode & 07777) == 0 && ::fstat(descriptor, &facts) == 0 &&
           facts.st_mode == wanted.st_mode;
}

void NewFile::Flush() const { Check(::fsync(AsDescriptor(handle_)) == 0); }

FileLock NewFile::RenameOver(const std::string& target)
{
    if (!Lock(AsDescriptor(handle_)))
        throw SystemFailure(path_ + " is held by another program");
    Check(::rename(path_.c_str(), target.c_str()) == 0);
    renamed_ = true;
    return FileLock(std::exchange(handle_, -1));
}

bool NewFile::RenameToFree(const std::string& target)
{
    int result = ::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE);
    if (result != 0 && (errno == EINVAL || errno == ENOSYS))  // not on this file system
        result = ::link(path_.c_str(), target.c_str());
    else
        renamed_ = result == 0;
    Check(result == 0 || errno == EEXIST);
    return result == 0;
}

}  // namespace host::platform
