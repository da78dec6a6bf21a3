// A described machine in the place of the one that the process runs on.
#pragma once

#include "machine/MachineDescription.h"
#include "simulation/CallMonitor.h"
#include "simulation/UnusableMachine.h"

#include <memory>
#include <optional>
#include <vector>

namespace simulation {

// While it lives, this process sees the described machine: the device enumerator of the multithreaded COM apartment
// lists its endpoints, and HKEY_LOCAL_MACHINE holds its registry. One at a time. The thread that makes it joins no
// apartment. Throws UnusableMachine, or std::runtime_error when the system refuses.
class SimulatedMachine {
public:
    explicit SimulatedMachine(machine::MachineDescription description);
    SimulatedMachine(const SimulatedMachine&) = delete;
    SimulatedMachine& operator=(const SimulatedMachine&) = delete;
    ~SimulatedMachine();

    // The platform calls since it was made, in order.
    [[nodiscard]] const std::vector<CallRecord>& Calls() const;

    // The faults that no call has met so far: what they were meant to make fail was never asked.
    [[nodiscard]] std::vector<machine::Fault> FaultsThatNeverFired() const;

    // The local id that a selector was switched to last; none: it never was.
    [[nodiscard]] std::optional<UINT> Selection(const machine::PartAddress& selector) const;

private:
    struct Installation;

    std::unique_ptr<Installation> installation_;
};

}  // namespace simulation
