// The multimedia device API over a described machine.
#pragma once

#include "ComObject.h"

namespace simulation {

// A class object for the device enumerator, with one reference for the caller.
IClassFactory* MakeDeviceEnumeratorFactory(MachinePtr machine);

}  // namespace simulation
