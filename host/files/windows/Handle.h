// What the Win32 files of this folder share.
#pragma once

#include "host/files/Platform.h"

#include <windows.h>

#include <string>
#include <utility>

namespace host::platform {

[[noreturn]] void ThrowError(DWORD error);
[[noreturn]] inline void ThrowLastError() { ThrowError(GetLastError()); }

inline void Check(bool succeeded)
{
    if (!succeeded)
        ThrowLastError();
}

// From and to the active code page.
std::wstring Wide(const std::string& text);
std::string Narrow(const std::wstring& text);

class Handle {
public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(other.Release()) {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        if (*this)
            CloseHandle(handle_);
    }

    [[nodiscard]] HANDLE Get() const { return handle_; }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }
    [[nodiscard]] HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

private:
    HANDLE handle_;
};

// An existing file or folder, with everybody else free to use it; the first gives none for one that cannot be opened.
Handle OpenWide(const std::wstring& path, DWORD access, DWORD flags);
Handle Open(const std::string& path, DWORD access, DWORD flags = 0);
// At the start of the file.
void WriteAll(HANDLE file, const std::string& bytes);
BY_HANDLE_FILE_INFORMATION FactsOf(HANDLE file);
Identity IdentityOf(const BY_HANDLE_FILE_INFORMATION& facts);

}  // namespace host::platform
