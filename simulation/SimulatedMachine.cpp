#include "simulation/SimulatedMachine.h"

#include "common/ComPtr.h"
#include "simulation/Platform.h"
#include "simulation/RegistryImage.h"
#include "simulation/devices/ComObject.h"
#include "simulation/devices/DeviceEnumerator.h"

#include <mmdeviceapi.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace simulation {

namespace {

// The only one of this process.
class OnlyOne {
public:
    OnlyOne()
    {
        if (exists.exchange(true))
            throw std::runtime_error("This process sees a simulated machine already");
    }
    OnlyOne(const OnlyOne&) = delete;
    OnlyOne& operator=(const OnlyOne&) = delete;
    ~OnlyOne() { exists = false; }

private:
    static inline std::atomic<bool> exists = false;
};

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

ClassObjectHost::ClassObjectHost(MachinePtr machine) : thread_([this, machine = std::move(machine)] { Run(machine); })
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return phase_ != Phase::Starting; });
    const HRESULT result = result_;
    lock.unlock();
    if (FAILED(result)) {
        thread_.join();
        throw std::runtime_error("The simulated device enumerator cannot be registered: " + std::to_string(result));
    }
}

ClassObjectHost::~ClassObjectHost()
{
    {
        const std::lock_guard lock(mutex_);
        phase_ = Phase::Ending;
    }
    changed_.notify_all();
    thread_.join();
}

void ClassObjectHost::Run(const MachinePtr& machine)
{
    LeaveSharedFiles();
    DWORD cookie = 0;
    const HRESULT joined = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    HRESULT result = joined;
    if (SUCCEEDED(joined)) {
        qov::ComPtr<IClassFactory> factory;
        *factory.Put() = MakeDeviceEnumeratorFactory(machine);
        result = CoRegisterClassObject(__uuidof(MMDeviceEnumerator), factory.Get(), CLSCTX_INPROC_SERVER,
                                       REGCLS_MULTIPLEUSE, &cookie);
    }

    std::unique_lock lock(mutex_);
    result_ = result;
    phase_ = Phase::Serving;
    changed_.notify_all();
    if (SUCCEEDED(result))
        changed_.wait(lock, [this] { return phase_ == Phase::Ending; });
    lock.unlock();

    if (SUCCEEDED(result))
        (void)CoRevokeClassObject(cookie);
    if (SUCCEEDED(joined))
        CoUninitialize();
}

}  // namespace

struct SimulatedMachine::Installation {
    explicit Installation(machine::MachineDescription description)
        : state(std::make_shared<MachineState>(std::move(description))),
          registry(state->description),
          classObject(state),
          platform(state->description, state->calls)
    {
    }

    OnlyOne onlyOne;
    MachinePtr state;
    RegistryImage registry;
    ClassObjectHost classObject;
    PlatformScope platform;  // last: nothing of the installation itself is recorded or made to fail
};

SimulatedMachine::SimulatedMachine(machine::MachineDescription description)
    : installation_(std::make_unique<Installation>(std::move(description)))
{
}

SimulatedMachine::~SimulatedMachine() = default;

const std::vector<CallRecord>& SimulatedMachine::Calls() const { return installation_->state->calls.Calls(); }

std::vector<machine::Fault> SimulatedMachine::FaultsThatNeverFired() const
{
    return installation_->state->calls.FaultsThatNeverFired();
}

std::optional<UINT> SimulatedMachine::Selection(const machine::PartAddress& selector) const
{
    const auto& selections = installation_->state->selections;
    const auto found = selections.find(selector);
    return found == selections.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace simulation
