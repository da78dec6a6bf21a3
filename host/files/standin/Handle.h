// What the POSIX files of this folder share.
#pragma once

#include "host/files/Platform.h"

#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

namespace host::platform {

[[noreturn]] void ThrowLastError();

inline void Check(bool succeeded)
{
    if (!succeeded)
        ThrowLastError();
}

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }

    [[nodiscard]] int Get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }
    [[nodiscard]] int Release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_;
};

// At the start of the file.
void WriteAll(int descriptor, const std::string& bytes);

}  // namespace host::platform
