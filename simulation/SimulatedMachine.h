#pragma once

#include "CallMonitor.h"
#include "ComObject.h"
#include "MachineDescription.h"
#include "Platform.h"
#include "RegistryImage.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace simulation {

// While it lives, this process sees the described machine: the device enumerator of the multithreaded COM apartment
// lists its endpoints, and HKEY_LOCAL_MACHINE holds its registry. One at a time. The thread that makes it joins no
// apartment. Throws std::runtime_error when the system refuses.
class SimulatedMachine {
public:
    explicit SimulatedMachine(MachineDescription description);
    SimulatedMachine(const SimulatedMachine&) = delete;
    SimulatedMachine& operator=(const SimulatedMachine&) = delete;
    ~SimulatedMachine();

    // The platform calls since it was made, in order.
    [[nodiscard]] const std::vector<CallRecord>& Calls() const { return state_->calls.Calls(); }

    // The local id that a selector was switched to last; none: it never was.
    [[nodiscard]] std::optional<UINT> Selection(const PartAddress& selector) const;

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
    class Place {
    public:
        Place();
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;
        ~Place();
    };

    Place place_;
    MachinePtr state_;
    RegistryImage registry_;
    ClassObjectHost classObject_;
    PlatformScope platform_;  // last: nothing of the installation itself is recorded or made to fail
};

}  // namespace simulation
