#include "host/ChosenMachine.h"

#include "BuiltIn.h"
#include "host/ThisMachine.h"
#include "machine/MachineJson.h"
#include "snapshot/Snapshot.h"

#include <stdexcept>

namespace host {

ChosenMachine ChooseMachine(const CommonOptions& options, MachineNeed need)
{
    if (!options.machineFile.empty())
        return {machine::ReadMachine(options.machineFile), "simulated, " + options.machineFile};
    if (options.exampleMachine)
        return {machine::ParseMachine(BuiltInMachineText, BuiltInMachineName),
                std::string("simulated, the built-in ") + BuiltInMachineName};
    if (need != MachineNeed::None && !HasWindowsAudio())
        throw std::runtime_error(
            "There is no Windows here: name a machine to simulate with --machine FILE or --example-machine");
    if (need == MachineNeed::Description)
        return {snapshot::TakeSnapshot(), "a snapshot of this one", true};
    return {std::nullopt, "this machine"};
}

}  // namespace host
