#pragma once

#include "machine/JsonPlace.h"
#include "machine/MachineDescription.h"

#include <nlohmann/json_fwd.hpp>

#include <vector>

namespace machine {

// A fault's object must be on `machine`, and be of the kind that the call is made on; null: that cannot be told.
std::vector<Fault> ReadFaults(const JsonPlace& place, const MachineDescription* machine);

nlohmann::ordered_json WriteFault(const Fault& fault);

}  // namespace machine
