#pragma once

#include "machine/JsonPlace.h"
#include "machine/MachineDescription.h"

#include <nlohmann/json_fwd.hpp>

#include <vector>

namespace machine {

// Whether the fault's object, which it must name, is there and of the kind that the call is made on.
bool NamesObjectOf(const Fault& fault, const MachineDescription& machine);

// With a null `machine` it cannot be told whether it has the objects that faults name.
std::vector<Fault> ReadFaults(const JsonPlace& place, const MachineDescription* machine);

nlohmann::ordered_json WriteFault(const Fault& fault);

}  // namespace machine
