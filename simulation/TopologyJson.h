#pragma once

#include "JsonPlace.h"
#include "TopologyDescription.h"

namespace simulation {

TopologyDescription ReadTopology(const JsonPlace& place);

AdapterDevice ReadAdapterDevice(const JsonPlace& place);

}  // namespace simulation
