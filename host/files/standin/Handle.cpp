#include "host/files/standin/Handle.h"

#include <system_error>

namespace host::platform {

void ThrowLastError() { throw SystemFailure(std::generic_category().message(errno)); }

void WriteAll(int descriptor, const std::string& bytes)
{
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t count =
            ::pwrite(descriptor, bytes.data() + written, bytes.size() - written, static_cast<off_t>(written));
        if (count < 0 && errno == EINTR)
            continue;
        Check(count >= 0);
        written += static_cast<std::size_t>(count);
    }
}

}  // namespace host::platform
