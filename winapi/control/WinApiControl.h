// What a real Windows does not offer and the stand-in does: to count what is held, to watch calls and make them fail,
// to say which Windows it is.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <string>

namespace winapi {

// A call of a function, as text.
struct FunctionCall {
    const char* function;
    // Of a registry function the path of its key, as it was opened, below the predefined key.
    std::wstring object{};
    // The name of a value, the index of an enumeration, a class id, the apartment that is joined, or the Windows
    // version that is asked for.
    std::wstring arguments{};
};

// Called in the place of every function that the library calls and that can fail. Gives the result of the function (a
// Windows error code or an HRESULT, as the function returns; for VerifyVersionInfoW the last error, 0 with TRUE):
// `body` does the function's work and tells its own. RegCloseKey gives up the handle whatever the hook does.
using CallHook = std::function<LONG(const FunctionCall& call, const std::function<LONG()>& body)>;
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

// A member of the multithreaded apartment that is no thread; it runs `work` on the calling one.
void JoinMultithreadedApartment();
void LeaveMultithreadedApartment();
HRESULT RunInMultithreadedApartment(const std::function<HRESULT()>& work);

struct WindowsVersion {
    DWORD major = 10;
    DWORD minor = 0;
    WORD servicePackMajor = 0;
};
void SetWindowsVersion(WindowsVersion version);

}  // namespace winapi
