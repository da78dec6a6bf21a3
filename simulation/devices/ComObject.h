// What the simulated COM objects have in common.
#pragma once

#include "machine/MachineDescription.h"
#include "simulation/CallMonitor.h"

#include <objbase.h>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace simulation {

// The machine that the objects stand for; it lives as long as one of them does.
struct MachineState {
    explicit MachineState(machine::MachineDescription described)
        : description(std::move(described)), calls(description.faults)
    {
    }

    const machine::MachineDescription description;
    CallMonitor calls;
    std::map<machine::PartAddress, UINT> selections;  // what the selectors were switched to last
};
using MachinePtr = std::shared_ptr<MachineState>;

// How many simulated objects are alive in this process.
inline std::atomic<long> liveComObjects = 0;

template <class First, class... Others>
class ComObject : public First, public Others... {
public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override { return Query(riid, object); }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --references_;
        if (left == 0)
            delete this;
        return left;
    }

    // Without a record: for the simulation itself.
    HRESULT Query(REFIID riid, void** object)
    {
        if (object == nullptr)
            return E_POINTER;
        *object = nullptr;
        if (IsEqualGUID(riid, __uuidof(IUnknown)) || IsEqualGUID(riid, __uuidof(First)))
            *object = static_cast<First*>(this);
        else
            (void)(OfferIf<Others>(riid, object) || ...);
        if (*object == nullptr)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

protected:
    explicit ComObject(MachinePtr machine) : machine_(std::move(machine)) { ++liveComObjects; }
    virtual ~ComObject() { --liveComObjects; }

    [[nodiscard]] MachineState& Machine() const { return *machine_; }
    [[nodiscard]] const MachinePtr& SharedMachine() const { return machine_; }

    template <class Body>
    HRESULT Recorded(const char* call, const std::string& object, const std::string& arguments, Body body)
    {
        return machine_->calls.Watch(call, object, arguments, std::move(body));
    }

private:
    template <class Other>
    bool OfferIf(REFIID riid, void** object)
    {
        if (!IsEqualGUID(riid, __uuidof(Other)))
            return false;
        *object = static_cast<Other*>(this);
        return true;
    }

    MachinePtr machine_;
    std::atomic<ULONG> references_ = 1;
};

// Hands a new object (which holds one reference for its receiver) out through an interface pointer.
template <class Interface, class Object>
HRESULT HandOut(Object* object, Interface** receiver)
{
    if (receiver == nullptr) {
        object->Release();
        return E_POINTER;
    }
    *receiver = object;
    return S_OK;
}

// A copy of `text` in task memory.
HRESULT HandOutText(const std::wstring& text, LPWSTR* receiver);

}  // namespace simulation
