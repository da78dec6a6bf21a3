// A snapshot of a machine made of bytes: a run on it is the same as on the machine, and so is a snapshot of it.
#include "snapshot/Snapshot.h"

#include "fuzz/Fuzz.h"
#include "fuzz/MachineFromBytes.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"
#include "support/Trial.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

// Failures that are there whenever the object is asked.
bool IsLasting(const machine::Fault& fault)
{
    return !fault.object.empty() && !fault.occurrence && fault.call.find("SetSelection") == std::string::npos;
}

// Whether a machine file can hold it.
bool CanBeWritten(const machine::MachineDescription& machine)
{
    try {
        (void)machine::WriteMachine(machine);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

// A machine made of bytes names parts that it does not have, and signal paths twice.
void DropMissingParts(machine::TopologyDescription& topology, const machine::MachineDescription& machine)
{
    const auto missing = [&topology](UINT id) { return topology.FindPart(id) == nullptr; };
    for (machine::PartDescription& part : topology.parts) {
        for (auto* const neighbours : {&part.incoming, &part.outgoing})
            if (*neighbours)
                std::erase_if(**neighbours, missing);
        if (!part.connectedTo)
            continue;
        const machine::TopologyDescription* const joined = machine.FindTopology(part.connectedTo->deviceId);
        const auto* const connector = joined == nullptr ? nullptr : joined->FindPart(part.connectedTo->localId);
        if (connector == nullptr || !connector->connectorType)
            part.connectedTo.reset();
    }
    std::sort(topology.signalPaths.begin(), topology.signalPaths.end());
    topology.signalPaths.erase(std::unique(topology.signalPaths.begin(), topology.signalPaths.end()),
                               topology.signalPaths.end());
    std::erase_if(topology.signalPaths,
                  [&missing](const auto& path) { return missing(path.first) || missing(path.second); });
}

// The machine with what a machine file can hold and a snapshot sees.
machine::MachineDescription Writable(machine::MachineDescription machine)
{
    for (machine::Endpoint& endpoint : machine.endpoints)
        DropMissingParts(endpoint.topology, machine);
    for (machine::AdapterDevice& device : machine.devices)
        DropMissingParts(device.topology, machine);
    const std::vector<machine::Fault> faults = std::exchange(machine.faults, {});
    for (const machine::Fault& fault : faults) {
        machine.faults.push_back(fault);
        if (!IsLasting(fault) || !CanBeWritten(machine))
            machine.faults.pop_back();
    }
    return machine;
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
    const machine::MachineDescription machine = Writable(MachineFromBytes(data, size));
    Require(CanBeWritten(machine), "a machine without missing parts can be written");
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
