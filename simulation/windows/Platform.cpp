// Windows reports itself, and its functions cannot be watched: a machine that needs more is refused.
#include "simulation/Platform.h"

#include "simulation/UnusableMachine.h"

#include <string>

namespace simulation {

namespace {

bool IsAtLeast(DWORD major, DWORD minor)
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    version.dwMajorVersion = major;
    version.dwMinorVersion = minor;
    ULONGLONG mask = VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL);
    mask = VerSetConditionMask(mask, VER_MINORVERSION, VER_GREATER_EQUAL);
    return VerifyVersionInfoW(&version, VER_MAJORVERSION | VER_MINORVERSION, mask) != FALSE;
}

}  // namespace

PlatformScope::PlatformScope(const machine::MachineDescription& machine, CallMonitor&)
{
    // What counts is on which side of Windows 8.1 the machine stands.
    const machine::WindowsVersion& wanted = machine.windowsVersion;
    const bool wantsNew = wanted.major > 6 || (wanted.major == 6 && wanted.minor >= 3);
    if (wantsNew != IsAtLeast(6, 3))
        throw UnusableMachine("This machine is described for Windows " + std::to_string(wanted.major) + "." +
                              std::to_string(wanted.minor) + ", but this Windows reports another generation");
    for (const machine::Fault& fault : machine.faults)
        if (machine::FindPlatformCall(fault.call)->IsFunction())
            throw UnusableMachine("Windows' own " + fault.call + " cannot be made to fail");
}

PlatformScope::~PlatformScope() = default;

}  // namespace simulation
