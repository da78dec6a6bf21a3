#include "host/ThisMachine.h"

#include <windows.h>

namespace host {

namespace {

bool IsAtLeast(DWORD type, DWORD value, ULONGLONG mask, OSVERSIONINFOEXW version)
{
    (type == VER_MAJORVERSION   ? version.dwMajorVersion
     : type == VER_MINORVERSION ? version.dwMinorVersion
                                : version.dwBuildNumber) = value;
    return VerifyVersionInfoW(&version, type, mask) != FALSE;
}

// The largest value of a field that this Windows claims to be at least: the question that the library asks too, so
// that the answer is the one that counts.
DWORD Largest(DWORD type, DWORD most)
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    const ULONGLONG mask = VerSetConditionMask(0, type, VER_GREATER_EQUAL);
    DWORD least = 0;
    while (least < most) {
        const DWORD middle = least + (most - least + 1) / 2;
        if (IsAtLeast(type, middle, mask, version))
            least = middle;
        else
            most = middle - 1;
    }
    return least;
}

}  // namespace

bool HasWindowsAudio() { return true; }

std::string SystemName()
{
    return "Windows " + std::to_string(Largest(VER_MAJORVERSION, 255)) + "." +
           std::to_string(Largest(VER_MINORVERSION, 255)) + "." + std::to_string(Largest(VER_BUILDNUMBER, 1 << 20));
}

}  // namespace host
