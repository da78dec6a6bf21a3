// A read-only file stops everybody but an administrator, who may overwrite any file: that right is laid down meanwhile.
#include "support/UnwritableFile.h"

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <stdexcept>

namespace fs = std::filesystem;

namespace {

void SetOverrideRight(bool held)
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct rights[2]{};
    if (syscall(SYS_capget, &header, rights) != 0)
        throw std::runtime_error("capget failed");
    constexpr std::uint32_t Override = 1u << CAP_DAC_OVERRIDE;
    const std::uint32_t effective = held ? rights[0].effective | Override : rights[0].effective & ~Override;
    rights[0].effective = effective & rights[0].permitted;
    if (syscall(SYS_capset, &header, rights) != 0)
        throw std::runtime_error("capset failed");
}

}  // namespace

struct UnwritableFile::Hold {
    explicit Hold(fs::path held) : path(std::move(held))
    {
        fs::permissions(path, fs::perms::owner_read);
        SetOverrideRight(false);
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold()
    {
        SetOverrideRight(true);
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    }

    fs::path path;
};

UnwritableFile::UnwritableFile(const fs::path& path) : hold_(std::make_unique<Hold>(path)) {}

UnwritableFile::~UnwritableFile() = default;
