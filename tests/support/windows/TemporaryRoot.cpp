#include "support/TemporaryRoot.h"

#include <windows.h>

#include <cstdlib>

TemporaryRoot::TemporaryRoot(const std::filesystem::path& folder)
{
    if (const wchar_t* const before = _wgetenv(L"TMP"))
        before_ = before;
    SetEnvironmentVariableW(L"TMP", folder.c_str());
}

TemporaryRoot::~TemporaryRoot() { SetEnvironmentVariableW(L"TMP", before_ ? before_->c_str() : nullptr); }
