#include "simulation/devices/Part.h"

#include "machine/Utf16.h"
#include "simulation/devices/Selector.h"

namespace simulation {

namespace {

class PartsList final : public ComObject<IPartsList> {
public:
    PartsList(MachinePtr machine, std::string object, const DeviceTopology& owner, const std::vector<UINT>& localIds)
        : ComObject(std::move(machine)), object_(std::move(object)), owner_(owner), localIds_(localIds)
    {
    }

    HRESULT STDMETHODCALLTYPE GetCount(UINT* count) override
    {
        return Recorded("IPartsList::GetCount", object_, {}, [&] {
            *count = static_cast<UINT>(localIds_.size());
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetPart(UINT index, IPart** part) override
    {
        return Recorded("IPartsList::GetPart", object_, std::to_string(index), [&]() -> HRESULT {
            const machine::PartDescription* const found =
                index < localIds_.size() ? owner_.topology.FindPart(localIds_[index]) : nullptr;
            return found == nullptr ? E_INVALIDARG : HandOut(MakePart(SharedMachine(), owner_, *found), part);
        });
    }

private:
    const std::string object_;  // the part whose list this is
    const DeviceTopology owner_;
    const std::vector<UINT> localIds_;
};

// What every part has; also tells a part of this simulation from a foreign one.
template <class... Interfaces>
class PartBase : public ComObject<IPart, Interfaces...> {
public:
    PartBase(MachinePtr machine, const DeviceTopology& owner, const machine::PartDescription& part)
        : ComObject<IPart, Interfaces...>(std::move(machine)),
          owner_(owner),
          part_(part),
          object_(machine::Utf16ToUtf8(machine::GlobalId({owner.deviceId, part.localId})))
    {
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override
    {
        // Named by the interface that the platform's users hold when they ask for the other one.
        const char* const call =
            IsEqualGUID(riid, __uuidof(IPart)) ? "IConnector::QueryInterface" : "IPart::QueryInterface";
        return this->Recorded(call, object_, {}, [&] { return this->Query(riid, object); });
    }
    HRESULT STDMETHODCALLTYPE GetName(LPWSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetLocalId(UINT* localId) override
    {
        return this->Recorded("IPart::GetLocalId", object_, {}, [&] {
            *localId = part_.localId;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetGlobalId(LPWSTR* globalId) override
    {
        return HandOutText(machine::GlobalId(Address()), globalId);
    }
    HRESULT STDMETHODCALLTYPE GetPartType(PartType* type) override
    {
        return this->Recorded("IPart::GetPartType", object_, {}, [&] {
            *type = part_.connectorType ? Connector : Subunit;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetSubType(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetControlInterfaceCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetControlInterface(UINT, IControlInterface**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumPartsIncoming(IPartsList** parts) override
    {
        return HandOutList("IPart::EnumPartsIncoming", part_.incoming, parts);
    }
    HRESULT STDMETHODCALLTYPE EnumPartsOutgoing(IPartsList** parts) override
    {
        return HandOutList("IPart::EnumPartsOutgoing", part_.outgoing, parts);
    }
    HRESULT STDMETHODCALLTYPE GetTopologyObject(IDeviceTopology** topology) override
    {
        return this->Recorded("IPart::GetTopologyObject", object_, {},
                              [&] { return HandOut(MakeTopology(this->SharedMachine(), owner_), topology); });
    }
    HRESULT STDMETHODCALLTYPE Activate(DWORD context, REFIID riid, void** object) override
    {
        const bool input = IsEqualGUID(riid, __uuidof(IAudioInputSelector));
        const bool output = IsEqualGUID(riid, __uuidof(IAudioOutputSelector));
        const char* const arguments = input ? "IAudioInputSelector" : output ? "IAudioOutputSelector" : "";
        return this->Recorded("IPart::Activate", object_, arguments, [&]() -> HRESULT {
            *object = nullptr;
            if (context != CLSCTX_ALL)
                return E_INVALIDARG;
            if (input && part_.selector == machine::SelectorKind::Input)
                *object = static_cast<IAudioInputSelector*>(new Selector<IAudioInputSelector>(
                    this->SharedMachine(), "IAudioInputSelector::SetSelection", object_, Address()));
            else if (output && part_.selector == machine::SelectorKind::Output)
                *object = static_cast<IAudioOutputSelector*>(new Selector<IAudioOutputSelector>(
                    this->SharedMachine(), "IAudioOutputSelector::SetSelection", object_, Address()));
            return *object == nullptr ? E_NOINTERFACE : S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE RegisterControlChangeCallback(REFGUID, IControlChangeNotify*) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnregisterControlChangeCallback(IControlChangeNotify*) override { return E_NOTIMPL; }

protected:
    [[nodiscard]] machine::PartAddress Address() const { return {owner_.deviceId, part_.localId}; }
    [[nodiscard]] const machine::PartDescription& Part() const { return part_; }
    [[nodiscard]] const std::string& Object() const { return object_; }

private:
    HRESULT HandOutList(const char* call, const std::optional<std::vector<UINT>>& localIds, IPartsList** parts)
    {
        return this->Recorded(call, object_, {}, [&]() -> HRESULT {
            *parts = nullptr;
            return localIds ? HandOut(MakePartsList(this->SharedMachine(), object_, owner_, *localIds), parts) : S_OK;
        });
    }

    const DeviceTopology owner_;
    const machine::PartDescription& part_;
    const std::string object_;
};

class SubunitPart final : public PartBase<> {
public:
    using PartBase::PartBase;
};

class ConnectorPart final : public PartBase<IConnector> {
public:
    using PartBase::PartBase;

    HRESULT STDMETHODCALLTYPE GetType(ConnectorType* type) override
    {
        return Recorded("IConnector::GetType", Object(), {}, [&] {
            *type = *Part().connectorType;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetDataFlow(DataFlow*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ConnectTo(IConnector*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Disconnect() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsConnected(BOOL* connected) override
    {
        return Recorded("IConnector::IsConnected", Object(), {}, [&] {
            *connected = Part().connectedTo ? TRUE : FALSE;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetConnectedTo(IConnector** other) override
    {
        return Recorded("IConnector::GetConnectedTo", Object(), {}, [&]() -> HRESULT {
            *other = nullptr;
            if (!Part().connectedTo)
                return E_NOTFOUND;
            const machine::PartAddress& address = *Part().connectedTo;
            const machine::TopologyDescription* const topology = Machine().description.FindTopology(address.deviceId);
            const machine::PartDescription* const part =
                topology == nullptr ? nullptr : topology->FindPart(address.localId);
            if (part == nullptr || !part->connectorType)
                return E_NOTFOUND;
            return HandOut(new ConnectorPart(SharedMachine(), {address.deviceId, *topology}, *part), other);
        });
    }
    HRESULT STDMETHODCALLTYPE GetConnectorIdConnectedTo(LPWSTR* connectorId) override
    {
        return Recorded("IConnector::GetConnectorIdConnectedTo", Object(), {}, [&] {
            return Part().connectedTo ? HandOutText(machine::GlobalId(*Part().connectedTo), connectorId) : E_NOTFOUND;
        });
    }
    HRESULT STDMETHODCALLTYPE GetDeviceIdConnectedTo(LPWSTR* deviceId) override
    {
        return Recorded("IConnector::GetDeviceIdConnectedTo", Object(), {}, [&] {
            return Part().connectedTo ? HandOutText(Part().connectedTo->deviceId, deviceId) : E_NOTFOUND;
        });
    }
};

}  // namespace

IPart* MakePart(const MachinePtr& machine, const DeviceTopology& owner, const machine::PartDescription& part)
{
    if (part.connectorType)
        return new ConnectorPart(machine, owner, part);
    return new SubunitPart(machine, owner, part);
}

IConnector* MakeConnector(const MachinePtr& machine, const DeviceTopology& owner, const machine::PartDescription& part)
{
    return new ConnectorPart(machine, owner, part);
}

IPartsList* MakePartsList(const MachinePtr& machine, const std::string& object, const DeviceTopology& owner,
                          const std::vector<UINT>& localIds)
{
    return new PartsList(machine, object, owner, localIds);
}

}  // namespace simulation
