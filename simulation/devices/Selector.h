// The selector of a subunit.
#pragma once

#include "simulation/devices/ComObject.h"

#include <devicetopology.h>

#include <string>

namespace simulation {

// IAudioInputSelector or IAudioOutputSelector, which are alike; `call` names SetSelection in the call records.
template <class Interface>
class Selector final : public ComObject<Interface> {
public:
    Selector(MachinePtr machine, const char* call, std::string object, machine::PartAddress address)
        : ComObject<Interface>(std::move(machine)),
          call_(call),
          object_(std::move(object)),
          address_(std::move(address))
    {
    }

    HRESULT STDMETHODCALLTYPE GetSelection(UINT* localId) override
    {
        const auto& selections = this->Machine().selections;
        const auto found = selections.find(address_);
        *localId = found == selections.end() ? 0 : found->second;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSelection(UINT localId, LPCGUID eventContext) override
    {
        return this->Recorded(call_, object_, machine::LocalIdText(localId), [&]() -> HRESULT {
            if (eventContext != nullptr)
                return E_INVALIDARG;
            this->Machine().selections[address_] = localId;
            return S_OK;
        });
    }

private:
    const char* const call_;
    const std::string object_;
    const machine::PartAddress address_;
};

}  // namespace simulation
