#include "Internal.h"

namespace {

winapi::WindowsVersion& Reported()
{
    static winapi::WindowsVersion version;
    return version;
}

constexpr int BitsPerCondition = 3;

int PositionOf(DWORD type)
{
    int position = 0;
    while ((type >> position) > 1)
        ++position;
    return position * BitsPerCondition;
}

bool IsAtLeast(const OSVERSIONINFOEXW& version, DWORD typeMask, ULONGLONG conditionMask)
{
    using winapi::internal::Unsupported;
    if (version.dwOSVersionInfoSize != sizeof(OSVERSIONINFOEXW))
        Unsupported("VerifyVersionInfoW", "dwOSVersionInfoSize");

    const winapi::WindowsVersion& reported = Reported();
    const struct {
        DWORD type;
        DWORD reported;
        DWORD wanted;
    } comparisons[] = {
        {VER_MAJORVERSION, reported.major, version.dwMajorVersion},
        {VER_MINORVERSION, reported.minor, version.dwMinorVersion},
        {VER_SERVICEPACKMAJOR, reported.servicePackMajor, version.wServicePackMajor},
    };
    // A lower field decides only where every higher one is equal.
    for (const auto& [type, ours, wanted] : comparisons) {
        if ((typeMask & type) == 0 || ((conditionMask >> PositionOf(type)) & 7) != VER_GREATER_EQUAL)
            Unsupported("VerifyVersionInfoW", "a mask other than \"at least\" on major, minor and service pack");
        if (ours != wanted)
            return ours > wanted;
    }
    return true;
}

}  // namespace

void winapi::SetWindowsVersion(WindowsVersion version) { Reported() = version; }

ULONGLONG WINAPI VerSetConditionMask(ULONGLONG mask, DWORD type, BYTE condition)
{
    if (type != VER_MAJORVERSION && type != VER_MINORVERSION && type != VER_SERVICEPACKMAJOR)
        winapi::internal::Unsupported("VerSetConditionMask", "type");
    return mask | (static_cast<ULONGLONG>(condition) << PositionOf(type));
}

BOOL WINAPI VerifyVersionInfoW(OSVERSIONINFOEXW* version, DWORD typeMask, ULONGLONG conditionMask)
{
    const std::wstring wanted =
        std::to_wstring(version->dwMajorVersion) + L"." + std::to_wstring(version->dwMinorVersion);
    const LONG result = winapi::internal::Watched({"VerifyVersionInfoW", {}, wanted}, [&]() -> LONG {
        return IsAtLeast(*version, typeMask, conditionMask) ? ERROR_SUCCESS : ERROR_OLD_WIN_VERSION;
    });
    if (result == ERROR_SUCCESS)
        return TRUE;
    SetLastError(static_cast<DWORD>(result));
    return FALSE;
}
