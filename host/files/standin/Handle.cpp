#include "host/files/standin/Handle.h"

#include <algorithm>
#include <system_error>

namespace host::platform {

void ThrowLastError() { throw SystemFailure(std::generic_category().message(errno)); }

void WriteAll(int descriptor, const std::string& bytes)
{
    // For more at once the system takes memory in large pieces, which it seldom has at hand.
    constexpr std::size_t Most = 0x40000;
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t count = ::pwrite(descriptor, bytes.data() + written, std::min(bytes.size() - written, Most),
                                       static_cast<off_t>(written));
        if (count < 0 && errno == EINTR)
            continue;
        Check(count >= 0);
        written += static_cast<std::size_t>(count);
    }
}

}  // namespace host::platform
