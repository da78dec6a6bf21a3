#include "DefaultMachine.h"

#include "BuiltInMachine.h"
#include "MachineJson.h"

#include <iostream>

std::optional<simulation::MachineDescription> host::DefaultMachine()
{
    std::cerr << "qovxml-configure: no --machine given and no Windows here: using the built-in example machine ("
              << BuiltInMachineName << ")\n";
    return simulation::ParseMachine(BuiltInMachineText, BuiltInMachineName);
}
