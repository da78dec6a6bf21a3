// Shared by the stand-in's own files.
#pragma once

#include "WinApiControl.h"

namespace winapi::internal {

// The result that the hook asks the function `name` to give, if any.
std::optional<LONG> Intercepted(const char* name);

// Runs the body of a function that gives an HRESULT, or gives the failure that the hook asks for; a success code that
// it asks for takes the place of the body's own success.
template <class Body>
HRESULT Watched(const char* name, Body body)
{
    const std::optional<LONG> asked = Intercepted(name);
    if (asked && FAILED(*asked))
        return *asked;
    const HRESULT own = body();
    return asked && SUCCEEDED(own) ? *asked : own;
}

// Ends the process: the caller used the function in a way that this stand-in does not know.
[[noreturn]] void Unsupported(const char* function, const char* argument);

void CountRegistry(Holdings& holdings);
void CountCom(Holdings& holdings);
void CountTaskMemory(Holdings& holdings);

}  // namespace winapi::internal
