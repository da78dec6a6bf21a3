#include "simulation/devices/DeviceEnumerator.h"

#include "common/ComPtr.h"
#include "machine/Utf16.h"
#include "simulation/devices/KsControl.h"
#include "simulation/devices/Topology.h"

#include <mmdeviceapi.h>

#include <algorithm>

namespace simulation {

namespace {

constexpr PROPERTYKEY FriendlyName{{0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}}, 14};
constexpr PROPERTYKEY EndpointGuid{{0x1da5d803, 0xd492, 0x4edd, {0x8c, 0x23, 0xe0, 0xc0, 0xff, 0xee, 0x7f, 0x0e}}, 4};

bool SameKey(REFPROPERTYKEY left, REFPROPERTYKEY right)
{
    return IsEqualGUID(left.fmtid, right.fmtid) && left.pid == right.pid;
}

std::string NameOf(const machine::Endpoint& endpoint) { return machine::Utf16ToUtf8(endpoint.deviceId); }

class PropertyStore final : public ComObject<IPropertyStore> {
public:
    PropertyStore(MachinePtr machine, const machine::Endpoint& endpoint)
        : ComObject(std::move(machine)), endpoint_(endpoint)
    {
    }

    HRESULT STDMETHODCALLTYPE GetCount(DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAt(DWORD, PROPERTYKEY*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) override
    {
        return Recorded("IPropertyStore::GetValue", NameOf(endpoint_), std::to_string(key.pid), [&]() -> HRESULT {
            PropVariantInit(value);
            // A property that an endpoint does not have reads as an empty value.
            const std::wstring* text = SameKey(key, FriendlyName)   ? &endpoint_.friendlyName
                                       : SameKey(key, EndpointGuid) ? &endpoint_.guidPropertyText
                                                                    : nullptr;
            if (text == nullptr)
                return S_OK;
            const HRESULT result = HandOutText(*text, &value->pwszVal);
            if (SUCCEEDED(result))
                value->vt = VT_LPWSTR;
            return result;
        });
    }
    HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY, REFPROPVARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Commit() override { return E_NOTIMPL; }

private:
    const machine::Endpoint& endpoint_;
};

// What every device has, whether endpoint or adapter.
template <class... Interfaces>
class DeviceBase : public ComObject<IMMDevice, Interfaces...> {
public:
    DeviceBase(MachinePtr machine, const std::wstring& id, const machine::TopologyDescription& topology)
        : ComObject<IMMDevice, Interfaces...>(std::move(machine)),
          id_(id),
          topology_(topology),
          object_(machine::Utf16ToUtf8(id))
    {
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        return this->Recorded("IMMDevice::QueryInterface", object_, {}, [&] { return this->Query(riid, object); });
    }
    HRESULT STDMETHODCALLTYPE Activate(REFIID riid, DWORD context, PROPVARIANT* parameters, void** object) override
    {
        const bool topology = IsEqualGUID(riid, __uuidof(IDeviceTopology));
        const bool ksControl = IsEqualGUID(riid, __uuidof(IKsControl));
        const char* const arguments = topology ? "IDeviceTopology" : ksControl ? "IKsControl" : "";
        return this->Recorded("IMMDevice::Activate", object_, arguments, [&]() -> HRESULT {
            *object = nullptr;
            if (context != CLSCTX_ALL || parameters != nullptr)
                return E_INVALIDARG;
            if (topology)
                *object = MakeTopology(this->SharedMachine(), {id_, topology_});
            else if (ksControl)
                *object = ActivateKsControl();
            return *object == nullptr ? E_NOINTERFACE : S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetId(LPWSTR* id) override
    {
        return this->Recorded("IMMDevice::GetId", object_, {}, [&] { return HandOutText(id_, id); });
    }

protected:
    [[nodiscard]] const std::string& Object() const { return object_; }

private:
    virtual IKsControl* ActivateKsControl() { return nullptr; }

    const std::wstring& id_;
    const machine::TopologyDescription& topology_;
    const std::string object_;
};

class EndpointDevice final : public DeviceBase<IMMEndpoint> {
public:
    EndpointDevice(MachinePtr machine, const machine::Endpoint& endpoint)
        : DeviceBase(std::move(machine), endpoint.deviceId, endpoint.topology), endpoint_(endpoint)
    {
    }

    HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD access, IPropertyStore** store) override
    {
        return Recorded("IMMDevice::OpenPropertyStore", Object(), std::to_string(access), [&] {
            return access == STGM_READ ? HandOut(new PropertyStore(SharedMachine(), endpoint_), store) : E_INVALIDARG;
        });
    }
    HRESULT STDMETHODCALLTYPE GetState(DWORD* state) override
    {
        return Recorded("IMMDevice::GetState", Object(), {}, [&] {
            *state = endpoint_.state;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetDataFlow(EDataFlow* flow) override
    {
        return Recorded("IMMEndpoint::GetDataFlow", Object(), {}, [&] {
            *flow = endpoint_.flow;
            return S_OK;
        });
    }

private:
    const machine::Endpoint& endpoint_;
};

class AdapterDeviceObject final : public DeviceBase<> {
public:
    AdapterDeviceObject(MachinePtr machine, const machine::AdapterDevice& device)
        : DeviceBase(std::move(machine), device.id, device.topology), device_(device)
    {
    }

    HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD, IPropertyStore**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetState(DWORD* state) override
    {
        return Recorded("IMMDevice::GetState", Object(), {}, [&] {
            *state = DEVICE_STATE_ACTIVE;
            return S_OK;
        });
    }

private:
    IKsControl* ActivateKsControl() override
    {
        return device_.filter ? MakeKsControl(SharedMachine(), device_) : nullptr;
    }

    const machine::AdapterDevice& device_;
};

class DeviceCollection final : public ComObject<IMMDeviceCollection> {
public:
    DeviceCollection(MachinePtr machine, std::vector<const machine::Endpoint*> endpoints)
        : ComObject(std::move(machine)), endpoints_(std::move(endpoints))
    {
    }

    HRESULT STDMETHODCALLTYPE GetCount(UINT* count) override
    {
        return Recorded("IMMDeviceCollection::GetCount", {}, {}, [&] {
            *count = static_cast<UINT>(endpoints_.size());
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE Item(UINT index, IMMDevice** device) override
    {
        return Recorded("IMMDeviceCollection::Item", {}, std::to_string(index), [&]() -> HRESULT {
            if (index >= endpoints_.size())
                return E_INVALIDARG;
            return HandOut(new EndpointDevice(SharedMachine(), *endpoints_[index]), device);
        });
    }

private:
    std::vector<const machine::Endpoint*> endpoints_;
};

class DeviceEnumerator final : public ComObject<IMMDeviceEnumerator> {
public:
    explicit DeviceEnumerator(MachinePtr machine) : ComObject(std::move(machine)) {}

    HRESULT STDMETHODCALLTYPE EnumAudioEndpoints(EDataFlow flow, DWORD stateMask,
                                                 IMMDeviceCollection** devices) override
    {
        const std::string arguments = std::to_string(flow) + ", " + std::to_string(stateMask);
        return Recorded("IMMDeviceEnumerator::EnumAudioEndpoints", {}, arguments, [&]() -> HRESULT {
            if (flow != eRender && flow != eCapture && flow != eAll)
                return E_INVALIDARG;
            std::vector<const machine::Endpoint*> endpoints;
            for (const machine::Endpoint& endpoint : Machine().description.endpoints)
                if ((flow == eAll || flow == endpoint.flow) && (stateMask & endpoint.state) != 0)
                    endpoints.push_back(&endpoint);
            return HandOut(new DeviceCollection(SharedMachine(), std::move(endpoints)), devices);
        });
    }
    HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow, ERole, IMMDevice**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDevice(LPCWSTR id, IMMDevice** device) override
    {
        return Recorded("IMMDeviceEnumerator::GetDevice", machine::Utf16ToUtf8(id), {}, [&]() -> HRESULT {
            for (const machine::Endpoint& endpoint : Machine().description.endpoints)
                if (endpoint.deviceId == id)
                    return HandOut(new EndpointDevice(SharedMachine(), endpoint), device);
            for (const machine::AdapterDevice& adapter : Machine().description.devices)
                if (adapter.id == id)
                    return HandOut(new AdapterDeviceObject(SharedMachine(), adapter), device);
            return E_NOTFOUND;
        });
    }
    HRESULT STDMETHODCALLTYPE RegisterEndpointNotificationCallback(IMMNotificationClient*) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnregisterEndpointNotificationCallback(IMMNotificationClient*) override
    {
        return E_NOTIMPL;
    }
};

class EnumeratorFactory final : public ComObject<IClassFactory> {
public:
    explicit EnumeratorFactory(MachinePtr machine) : ComObject(std::move(machine)) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override
    {
        *object = nullptr;
        if (outer != nullptr)
            return CLASS_E_NOAGGREGATION;
        qov::ComPtr<DeviceEnumerator> enumerator;
        *enumerator.Put() = new DeviceEnumerator(SharedMachine());
        return enumerator->Query(riid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

IClassFactory* MakeDeviceEnumeratorFactory(const MachinePtr& machine) { return new EnumeratorFactory(machine); }

}  // namespace simulation
