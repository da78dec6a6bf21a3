#include "simulation/Platform.h"

#include "WinApiControl.h"

#include <sched.h>

namespace simulation {

PlatformScope::PlatformScope(const machine::MachineDescription& machine, CallMonitor& calls)
{
    winapi::SetWindowsVersion({machine.windowsVersion.major, machine.windowsVersion.minor, 0});
    winapi::SetCallHook([&calls](const char* function) { return calls.EnterFunction(function); });
}

PlatformScope::~PlatformScope()
{
    winapi::SetCallHook({});
    winapi::SetWindowsVersion({});
}

// Where the system refuses, writing is slower and nothing else.
void LeaveSharedFiles() { (void)::unshare(CLONE_FILES); }

}  // namespace simulation
