// The filter of a simulated audio driver: it answers the audio engine descriptor and the PP API.
#pragma once

#include "simulation/devices/ComObject.h"

#include <devicetopology.h>

namespace simulation {

// The kernel-streaming control of an adapter device that has a filter, with one reference for the caller.
IKsControl* MakeKsControl(const MachinePtr& machine, const machine::AdapterDevice& device);

}  // namespace simulation
