#include "DefaultMachine.h"

#include "BuiltInMachine.h"
#include "machine/MachineJson.h"

#include <iostream>

std::optional<machine::MachineDescription> host::DefaultMachine()
{
    std::cerr << "qovxml-configure: no --machine given and no Windows here: using the built-in example machine ("
              << BuiltInMachineName << ")\n";
    return machine::ParseMachine(BuiltInMachineText, BuiltInMachineName);
}
