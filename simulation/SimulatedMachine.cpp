#include "simulation/SimulatedMachine.h"

#include "common/ComPtr.h"
#include "simulation/devices/DeviceEnumerator.h"

#include <mmdeviceapi.h>

#include <atomic>
#include <stdexcept>
#include <string>

namespace simulation {

namespace {

std::atomic<bool> machineSimulated = false;

}  // namespace

SimulatedMachine::OnlyOne::OnlyOne()
{
    if (machineSimulated.exchange(true))
        throw std::runtime_error("This process sees a simulated machine already");
}

SimulatedMachine::OnlyOne::~OnlyOne() { machineSimulated = false; }

SimulatedMachine::SimulatedMachine(machine::MachineDescription description)
    : state_(std::make_shared<MachineState>(std::move(description))),
      registry_(state_->description),
      classObject_(state_),
      platform_(state_->description, state_->calls)
{
}

SimulatedMachine::~SimulatedMachine() = default;

std::optional<UINT> SimulatedMachine::Selection(const machine::PartAddress& selector) const
{
    const auto found = state_->selections.find(selector);
    return found == state_->selections.end() ? std::nullopt : std::optional(found->second);
}

SimulatedMachine::ClassObjectHost::ClassObjectHost(MachinePtr machine)
    : thread_([this, machine = std::move(machine)] { Run(machine); })
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

SimulatedMachine::ClassObjectHost::~ClassObjectHost()
{
    {
        const std::lock_guard lock(mutex_);
        phase_ = Phase::Ending;
    }
    changed_.notify_all();
    thread_.join();
}

void SimulatedMachine::ClassObjectHost::Run(const MachinePtr& machine)
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

}  // namespace simulation
