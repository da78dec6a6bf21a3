// What a simulated machine needs of the system below it that is not the same everywhere.
#pragma once

#include "machine/MachineDescription.h"
#include "simulation/CallMonitor.h"

namespace simulation {

// While it lives, the system reports the machine's Windows version, and the monitor sees every call of a Windows
// function. Throws UnusableMachine when this system cannot do what the machine asks for.
class PlatformScope {
public:
    PlatformScope(const machine::MachineDescription& machine, CallMonitor& calls);
    PlatformScope(const PlatformScope&) = delete;
    PlatformScope& operator=(const PlatformScope&) = delete;
    ~PlatformScope();
};

}  // namespace simulation
