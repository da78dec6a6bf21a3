// The multimedia device API over a described machine.
#pragma once

#include "simulation/devices/ComObject.h"

namespace simulation {

// A class object for the device enumerator, with one reference for the caller.
IClassFactory* MakeDeviceEnumeratorFactory(const MachinePtr& machine);

}  // namespace simulation
