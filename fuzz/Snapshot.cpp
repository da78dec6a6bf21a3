// A snapshot of a machine made of bytes: a run on it is the same as on the machine, and so is a snapshot of it.
#include "snapshot/Snapshot.h"

#include "fuzz/Fuzz.h"
#include "fuzz/MachineFromBytes.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"
#include "support/Trial.h"

#include <stdexcept>

namespace {

// Failures that are there whenever the object is asked.
bool IsLasting(const machine::Fault& fault)
{
    return !fault.object.empty() && !fault.occurrence && fault.call.find("SetSelection") == std::string::npos;
}

// Whether a machine file can hold it: a machine made of bytes may name parts that it does not have.
bool CanBeWritten(const machine::MachineDescription& machine)
{
    try {
        (void)machine::WriteMachine(machine);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

machine::MachineDescription SnapshotOf(const machine::MachineDescription& machine)
{
    const simulation::SimulatedMachine simulated(machine);
    return snapshot::TakeSnapshot();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Trials trials;
    machine::MachineDescription machine = MachineFromBytes(data, size);
    std::erase_if(machine.faults, [](const machine::Fault& fault) { return !IsLasting(fault); });
    if (!CanBeWritten(machine))
        return 0;
    const machine::MachineDescription taken = SnapshotOf(machine);
    if (!taken.notes.empty())  // what it could not hold
        return 0;
    Require(CanBeWritten(taken), "a snapshot can be written");
    Require(SnapshotOf(taken) == taken, "a snapshot of what it describes is the same");
    const Trial first = trials.Run(machine);
    const Trial second = trials.Run(taken);
    Require(first.failure == second.failure, "the same failure: " + first.failure + "/" + second.failure);
    Require(first.log == second.log, "the same log");
    Require(first.files == second.files, "the same files");
    return 0;
}
