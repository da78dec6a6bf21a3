// Shared by the stand-in's own files.
#pragma once

#include "WinApiControl.h"

namespace winapi::internal {

// The result that the hook asks the function `name` to give, if any.
std::optional<LONG> Intercepted(const char* name);

// Ends the process: the caller used the function in a way that this stand-in does not know.
[[noreturn]] void Unsupported(const char* function, const char* argument);

void CountRegistry(Holdings& holdings);
void CountCom(Holdings& holdings);
void CountTaskMemory(Holdings& holdings);

}  // namespace winapi::internal
