#include "DefaultMachine.h"

std::optional<machine::MachineDescription> host::DefaultMachine() { return std::nullopt; }
