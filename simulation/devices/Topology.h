// Device topologies over a described machine.
#pragma once

#include "simulation/devices/ComObject.h"

#include <devicetopology.h>

namespace simulation {

// A topology and the device that it belongs to. Both are the machine description's and outlive every object.
struct DeviceTopology {
    const std::wstring& deviceId;
    const machine::TopologyDescription& topology;
};

// With one reference for the caller.
IDeviceTopology* MakeTopology(const MachinePtr& machine, const DeviceTopology& topology);

}  // namespace simulation
