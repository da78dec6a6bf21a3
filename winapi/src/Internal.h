// Shared by the stand-in's own files.
#pragma once

#include "WinApiControl.h"

namespace winapi::internal {

// What the function `call` gives: what `body`, which does its work, comes to, or what the hook makes of it.
LONG Watched(const FunctionCall& call, const std::function<LONG()>& body);

// As StringFromCLSID writes it.
std::wstring ClassIdText(REFCLSID classId);

// Ends the process: the caller used the function in a way that this stand-in does not know.
[[noreturn]] void Unsupported(const char* function, const char* argument);

void CountRegistry(Holdings& holdings);
void CountCom(Holdings& holdings);
void CountTaskMemory(Holdings& holdings);

}  // namespace winapi::internal
