#include "host/files/Platform.h"

#include "host/files/standin/Handle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace host::platform {

namespace {

Kind KindOf(mode_t mode) { return S_ISREG(mode) ? Kind::Regular : S_ISLNK(mode) ? Kind::Link : Kind::Other; }

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

Facts Look(const std::string& path)
{
    struct stat facts {};
    if (::stat(path.c_str(), &facts) == 0)
        return {KindOf(facts.st_mode), {facts.st_dev, facts.st_ino}, facts.st_nlink};
    Check(errno == ENOENT);
    return {};
}

Kind KindOfName(const std::string& path)
{
    struct stat facts {};
    if (::lstat(path.c_str(), &facts) == 0)
        return KindOf(facts.st_mode);
    Check(errno == ENOENT);
    return Kind::Missing;
}

std::string RealPath(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    Check(real != nullptr);
    return real.get();
}

void ReadParts(const std::string& path, const std::function<bool(std::string_view part)>& take)
{
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    Check(bool(file));
    std::vector<char> part(std::size_t{1} << 18);
    for (;;) {
        const ssize_t count = ::read(file.Get(), part.data(), part.size());
        if (count < 0 && errno == EINTR)
            continue;
        Check(count >= 0);
        if (count == 0 || !take({part.data(), static_cast<std::size_t>(count)}))
            return;
    }
}

void CheckWritable(const std::string& path)
{
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
    Check(bool(file));
}

void CheckFolderWritable(const std::string& path)
{
    Check(::faccessat(AT_FDCWD, FolderOf(path).c_str(), W_OK | X_OK, AT_EACCESS) == 0);
}

bool Trusted(const std::string& path, const std::string& file)
{
    struct stat facts {};
    struct stat other {};
    Check(::lstat(path.c_str(), &facts) == 0 && ::stat(file.c_str(), &other) == 0);
    return S_ISREG(facts.st_mode) && (facts.st_uid == 0 || facts.st_uid == ::geteuid() || facts.st_uid == other.st_uid);
}

void Rewrite(const std::string& path, const std::string& bytes)
{
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    Check(bool(file));
    WriteAll(file.Get(), bytes);
    Check(::ftruncate(file.Get(), static_cast<off_t>(bytes.size())) == 0);
    Check(::fsync(file.Get()) == 0);
}

void Remove(const std::string& path) { Check(::unlink(path.c_str()) == 0 || errno == ENOENT); }

void FlushFolder(const std::string& path)
{
    const Descriptor folder(::open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) {  // one that may be written but not read
        ::sync();
        return;
    }
    // Some file systems keep no folder that could be flushed.
    Check(::fsync(folder.Get()) == 0 || errno == EINVAL);
}

}  // namespace host::platform
