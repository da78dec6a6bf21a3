#pragma once

#include "machine/MachineDescription.h"
#include "simulation/CallMonitor.h"
#include "simulation/Platform.h"
#include "simulation/RegistryImage.h"
#include "simulation/devices/ComObject.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
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
    [[nodiscard]] const std::vector<CallRecord>& Calls() const { return state_->calls.Calls(); }

    // The faults that no call has met so far: what they were meant to make fail was never asked.
    [[nodiscard]] std::vector<machine::Fault> FaultsThatNeverFired() const
    {
        return state_->calls.FaultsThatNeverFired();
    }

    // The local id that a selector was switched to last; none: it never was.
    [[nodiscard]] std::optional<UINT> Selection(const machine::PartAddress& selector) const;

private:
    // Holds the class object in the multithreaded apartment, from a thread of its own.
    class ClassObjectHost {
    public:
        explicit ClassObjectHost(MachinePtr machine);
        ClassObjectHost(const ClassObjectHost&) = delete;
        ClassObjectHost& operator=(const ClassObjectHost&) = delete;
        ~ClassObjectHost();

    private:
        void Run(const MachinePtr& machine);

        enum class Phase { Starting, Serving, Ending };
        std::mutex mutex_;
        std::condition_variable changed_;
        Phase phase_ = Phase::Starting;
        HRESULT result_ = E_FAIL;
        std::thread thread_;
    };

    // The only one of this process.
    class OnlyOne {
    public:
        OnlyOne();
        OnlyOne(const OnlyOne&) = delete;
        OnlyOne& operator=(const OnlyOne&) = delete;
        ~OnlyOne();
    };

    OnlyOne onlyOne_;
    MachinePtr state_;
    RegistryImage registry_;
    ClassObjectHost classObject_;
    PlatformScope platform_;  // last: nothing of the installation itself is recorded or made to fail
};

}  // namespace simulation
