// Device topologies over a described machine.
#pragma once

#include "ComObject.h"

#include <devicetopology.h>

namespace simulation {

// The topology of an endpoint or adapter device, with one reference for the caller. Both outlive the object: they
// belong to the machine's description.
IDeviceTopology* MakeTopology(MachinePtr machine, const std::wstring& deviceId, const TopologyDescription& topology);

// The kernel-streaming control of an adapter device, with one reference for the caller; the device has a filter.
IKsControl* MakeKsControl(MachinePtr machine, const AdapterDevice& device);

}  // namespace simulation
