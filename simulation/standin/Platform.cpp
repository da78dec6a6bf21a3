#include "simulation/Platform.h"

#include "WinApiControl.h"

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

}  // namespace simulation
