#include "DefaultMachine.h"

std::optional<simulation::MachineDescription> host::DefaultMachine() { return std::nullopt; }
