#include "Topology.h"

#include "Utf16.h"

#include <algorithm>
#include <cstdio>

namespace simulation {

namespace {

// A topology and the device that it belongs to.
struct Place {
    const std::wstring& deviceId;
    const TopologyDescription& topology;

    [[nodiscard]] const PartDescription* Find(UINT localId) const
    {
        const auto found = std::find_if(topology.parts.begin(), topology.parts.end(),
                                        [localId](const PartDescription& part) { return part.localId == localId; });
        return found == topology.parts.end() ? nullptr : &*found;
    }
};

std::optional<Place> FindPlace(const MachineDescription& machine, const std::wstring& deviceId)
{
    for (const Endpoint& endpoint : machine.endpoints)
        if (endpoint.deviceId == deviceId)
            return Place{endpoint.deviceId, endpoint.topology};
    for (const AdapterDevice& device : machine.devices)
        if (device.id == deviceId)
            return Place{device.id, device.topology};
    return std::nullopt;
}

// As Windows writes it.
std::wstring GlobalId(const PartAddress& part)
{
    char localId[10];
    std::snprintf(localId, sizeof(localId), "/%08x", part.localId);
    return part.deviceId + Utf8ToUtf16(localId);
}

IPart* MakePart(const MachinePtr& machine, const Place& place, const PartDescription& part);

class PartsList final : public ComObject<IPartsList> {
public:
    PartsList(MachinePtr machine, std::string object, const Place& place, const std::vector<UINT>& localIds)
        : ComObject(std::move(machine)), object_(std::move(object)), place_(place), localIds_(localIds)
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
            const PartDescription* const found = index < localIds_.size() ? place_.Find(localIds_[index]) : nullptr;
            return found == nullptr ? E_INVALIDARG : HandOut(MakePart(SharedMachine(), place_, *found), part);
        });
    }

private:
    const std::string object_;  // the part whose list this is
    const Place place_;
    const std::vector<UINT> localIds_;
};

template <class Interface>
class Selector final : public ComObject<Interface> {
public:
    Selector(MachinePtr machine, const char* call, std::string object, PartAddress address)
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
        return this->Recorded(call_, object_, std::to_string(localId), [&]() -> HRESULT {
            if (eventContext != nullptr)
                return E_INVALIDARG;
            this->Machine().selections[address_] = localId;
            return S_OK;
        });
    }

private:
    const char* const call_;
    const std::string object_;
    const PartAddress address_;
};

// What every part has; also tells a part of this simulation from a foreign one.
template <class... Interfaces>
class PartBase : public ComObject<IPart, Interfaces...> {
public:
    PartBase(MachinePtr machine, const Place& place, const PartDescription& part)
        : ComObject<IPart, Interfaces...>(std::move(machine)),
          place_(place),
          part_(part),
          object_(Utf16ToUtf8(place.deviceId) + "/" + std::to_string(part.localId))
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
        return HandOutText(GlobalId(Address()), globalId);
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
        return this->Recorded("IPart::GetTopologyObject", object_, {}, [&] {
            return HandOut(MakeTopology(this->SharedMachine(), place_.deviceId, place_.topology), topology);
        });
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
            if (input && part_.selector == SelectorKind::Input)
                *object = static_cast<IAudioInputSelector*>(new Selector<IAudioInputSelector>(
                    this->SharedMachine(), "IAudioInputSelector::SetSelection", object_, Address()));
            else if (output && part_.selector == SelectorKind::Output)
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
    [[nodiscard]] PartAddress Address() const { return {place_.deviceId, part_.localId}; }
    [[nodiscard]] const PartDescription& Part() const { return part_; }
    [[nodiscard]] const std::string& Object() const { return object_; }

private:
    HRESULT HandOutList(const char* call, const std::optional<std::vector<UINT>>& localIds, IPartsList** parts)
    {
        return this->Recorded(call, object_, {}, [&]() -> HRESULT {
            *parts = nullptr;
            return localIds ? HandOut(new PartsList(this->SharedMachine(), object_, place_, *localIds), parts) : S_OK;
        });
    }

    const Place place_;
    const PartDescription& part_;
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
            const auto place = FindPlace(Machine().description, Part().connectedTo->deviceId);
            const PartDescription* const part = place ? place->Find(Part().connectedTo->localId) : nullptr;
            if (part == nullptr || !part->connectorType)
                return E_NOTFOUND;
            return HandOut(new ConnectorPart(SharedMachine(), *place, *part), other);
        });
    }
    HRESULT STDMETHODCALLTYPE GetConnectorIdConnectedTo(LPWSTR* connectorId) override
    {
        return Recorded("IConnector::GetConnectorIdConnectedTo", Object(), {}, [&] {
            return Part().connectedTo ? HandOutText(GlobalId(*Part().connectedTo), connectorId) : E_NOTFOUND;
        });
    }
    HRESULT STDMETHODCALLTYPE GetDeviceIdConnectedTo(LPWSTR* deviceId) override
    {
        return Recorded("IConnector::GetDeviceIdConnectedTo", Object(), {}, [&] {
            return Part().connectedTo ? HandOutText(Part().connectedTo->deviceId, deviceId) : E_NOTFOUND;
        });
    }
};

IPart* MakePart(const MachinePtr& machine, const Place& place, const PartDescription& part)
{
    if (part.connectorType)
        return new ConnectorPart(machine, place, part);
    return new SubunitPart(machine, place, part);
}

class Topology final : public ComObject<IDeviceTopology> {
public:
    Topology(MachinePtr machine, const Place& place)
        : ComObject(std::move(machine)), place_(place), object_(Utf16ToUtf8(place.deviceId))
    {
        for (const PartDescription& part : place.topology.parts)
            if (part.connectorType)
                connectors_.push_back(&part);
    }

    HRESULT STDMETHODCALLTYPE GetConnectorCount(UINT* count) override
    {
        return Recorded("IDeviceTopology::GetConnectorCount", object_, {}, [&] {
            *count = static_cast<UINT>(connectors_.size());
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetConnector(UINT index, IConnector** connector) override
    {
        return Recorded("IDeviceTopology::GetConnector", object_, std::to_string(index), [&]() -> HRESULT {
            if (index >= connectors_.size())
                return E_INVALIDARG;
            return HandOut(new ConnectorPart(SharedMachine(), place_, *connectors_[index]), connector);
        });
    }
    HRESULT STDMETHODCALLTYPE GetSubunitCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSubunit(UINT, ISubunit**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPartById(UINT, IPart**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDeviceId(LPWSTR* deviceId) override
    {
        return Recorded("IDeviceTopology::GetDeviceId", object_, {},
                        [&] { return HandOutText(place_.deviceId, deviceId); });
    }
    HRESULT STDMETHODCALLTYPE GetSignalPath(IPart* from, IPart* to, BOOL rejectMixedPaths, IPartsList** parts) override
    {
        const std::optional<UINT> fromId = LocalIdOf(from);
        const std::optional<UINT> toId = LocalIdOf(to);
        const std::string arguments = std::to_string(fromId.value_or(0)) + ", " + std::to_string(toId.value_or(0)) +
                                      ", " + std::to_string(rejectMixedPaths);
        return Recorded("IDeviceTopology::GetSignalPath", object_, arguments, [&]() -> HRESULT {
            *parts = nullptr;
            if (!fromId || !toId)
                return E_INVALIDARG;
            const auto& paths = place_.topology.signalPaths;
            if (std::find(paths.begin(), paths.end(), std::pair(*fromId, *toId)) == paths.end())
                return E_NOTFOUND;
            return HandOut(new PartsList(SharedMachine(), object_, place_, std::vector<UINT>{*fromId, *toId}), parts);
        });
    }

private:
    // Without a record of the question; none for a part of another topology.
    std::optional<UINT> LocalIdOf(IPart* part) const
    {
        if (part == nullptr)
            return std::nullopt;
        LPWSTR globalId = nullptr;
        if (FAILED(part->GetGlobalId(&globalId)))
            return std::nullopt;
        const std::wstring id = globalId;
        CoTaskMemFree(globalId);
        for (const PartDescription& candidate : place_.topology.parts)
            if (GlobalId({place_.deviceId, candidate.localId}) == id)
                return candidate.localId;
        return std::nullopt;
    }

    const Place place_;
    const std::string object_;
    std::vector<const PartDescription*> connectors_;
};

}  // namespace

IDeviceTopology* MakeTopology(MachinePtr machine, const std::wstring& deviceId, const TopologyDescription& topology)
{
    return new Topology(std::move(machine), Place{deviceId, topology});
}

}  // namespace simulation
