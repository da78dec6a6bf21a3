#include "Internal.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

winapi::CallHook& Hook()
{
    static winapi::CallHook hook;
    return hook;
}

thread_local DWORD lastError = 0;

}  // namespace

DWORD WINAPI GetLastError() { return lastError; }
void WINAPI SetLastError(DWORD code) { lastError = code; }

namespace winapi {

void SetCallHook(CallHook hook) { Hook() = std::move(hook); }

Holdings CurrentHoldings()
{
    Holdings holdings;
    internal::CountRegistry(holdings);
    internal::CountCom(holdings);
    internal::CountTaskMemory(holdings);
    return holdings;
}

namespace internal {

LONG Watched(const FunctionCall& call, const std::function<LONG()>& body)
{
    return Hook() ? Hook()(call, body) : body();
}

void Unsupported(const char* function, const char* argument)
{
    std::fprintf(stderr, "%s: unsupported argument: %s\n", function, argument);
    std::abort();
}

}  // namespace internal
}  // namespace winapi
