#include "simulation/Platform.h"

#include "WinApiControl.h"
#include "machine/Utf16.h"

namespace simulation {

PlatformScope::PlatformScope(const machine::MachineDescription& machine, CallMonitor& calls)
{
    winapi::SetWindowsVersion({machine.windowsVersion.major, machine.windowsVersion.minor, 0});
    winapi::SetCallHook([&calls](const winapi::FunctionCall& call, const std::function<LONG()>& body) {
        return calls.Watch(call.function, machine::Utf16ToUtf8(call.object), machine::Utf16ToUtf8(call.arguments),
                           body);
    });
}

PlatformScope::~PlatformScope()
{
    winapi::SetCallHook({});
    winapi::SetWindowsVersion({});
}

}  // namespace simulation
