#pragma once

#include "machine/JsonPlace.h"
#include "machine/TopologyDescription.h"

namespace machine {

TopologyDescription ReadTopology(const JsonPlace& place);

AdapterDevice ReadAdapterDevice(const JsonPlace& place);

}  // namespace machine
