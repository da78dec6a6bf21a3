// What a real Windows does not offer and the stand-in does: to count what is held, to make a call fail, to say which
// Windows it is.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <optional>

namespace winapi {

// Called on entry of every fallible function with its name. A value makes the function do nothing but give that
// result (a Windows error code or an HRESULT, as the function returns; for VerifyVersionInfoW the last error, with
// FALSE). Two exceptions: a failed RegCloseKey still gives up the handle, and an HRESULT that is a success code is
// given in the place of S_OK by a function that does its work.
using CallHook = std::function<std::optional<LONG>(const char* function)>;
void SetCallHook(CallHook hook);

// What the process holds at this moment.
struct Holdings {
    std::size_t openKeys = 0;
    std::size_t overriddenKeys = 0;
    std::size_t taskMemoryBlocks = 0;
    std::size_t apartmentJoins = 0;  // CoInitializeEx calls that succeeded and are not balanced yet, over all threads
    std::size_t classObjects = 0;
};
Holdings CurrentHoldings();

struct WindowsVersion {
    DWORD major = 10;
    DWORD minor = 0;
    WORD servicePackMajor = 0;
};
void SetWindowsVersion(WindowsVersion version);

}  // namespace winapi
