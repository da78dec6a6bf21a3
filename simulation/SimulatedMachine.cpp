#include "simulation/SimulatedMachine.h"

#include "common/ComPtr.h"
#include "simulation/MultithreadedApartment.h"
#include "simulation/Platform.h"
#include "simulation/RegistryImage.h"
#include "simulation/devices/ComObject.h"
#include "simulation/devices/DeviceEnumerator.h"

#include <mmdeviceapi.h>

#include <atomic>
#include <stdexcept>
#include <string>
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

// The device enumerator's class object, in the multithreaded apartment.
class ClassObject {
public:
    explicit ClassObject(const MachinePtr& machine)
    {
        const HRESULT result = apartment_.Run([&] {
            qov::ComPtr<IClassFactory> factory;
            *factory.Put() = MakeDeviceEnumeratorFactory(machine);
            return CoRegisterClassObject(__uuidof(MMDeviceEnumerator), factory.Get(), CLSCTX_INPROC_SERVER,
                                         REGCLS_MULTIPLEUSE, &cookie_);
        });
        if (FAILED(result))
            throw std::runtime_error("The simulated device enumerator cannot be registered: " + std::to_string(result));
    }
    ClassObject(const ClassObject&) = delete;
    ClassObject& operator=(const ClassObject&) = delete;
    ~ClassObject()
    {
        (void)apartment_.Run([this] { return CoRevokeClassObject(cookie_); });
    }

private:
    MultithreadedApartment apartment_;
    DWORD cookie_ = 0;
};

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
    ClassObject classObject;
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
