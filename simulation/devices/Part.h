// The parts of a device topology, over a described machine.
#pragma once

#include "simulation/devices/Topology.h"

#include <string>
#include <vector>

namespace simulation {

// A connector or a subunit, with one reference for the caller.
IPart* MakePart(const MachinePtr& machine, const DeviceTopology& owner, const machine::PartDescription& part);

// The same for a part that is a connector.
IConnector* MakeConnector(const MachinePtr& machine, const DeviceTopology& owner, const machine::PartDescription& part);

// A list of parts of one topology, with one reference for the caller; `object` names in its call records what the list
// was asked of.
IPartsList* MakePartsList(const MachinePtr& machine, const std::string& object, const DeviceTopology& owner,
                          const std::vector<UINT>& localIds);

}  // namespace simulation
