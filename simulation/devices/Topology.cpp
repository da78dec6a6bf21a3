#include "simulation/devices/Topology.h"

#include "common/Owners.h"
#include "machine/Utf16.h"
#include "simulation/devices/Part.h"

#include <algorithm>

namespace simulation {

namespace {

class Topology final : public ComObject<IDeviceTopology> {
public:
    Topology(MachinePtr machine, const DeviceTopology& owner)
        : ComObject(std::move(machine)), owner_(owner), object_(machine::Utf16ToUtf8(owner.deviceId))
    {
        for (const machine::PartDescription& part : owner.topology.parts)
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
            return HandOut(MakeConnector(SharedMachine(), owner_, *connectors_[index]), connector);
        });
    }
    HRESULT STDMETHODCALLTYPE GetSubunitCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSubunit(UINT, ISubunit**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPartById(UINT, IPart**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDeviceId(LPWSTR* deviceId) override
    {
        return Recorded("IDeviceTopology::GetDeviceId", object_, {},
                        [&] { return HandOutText(owner_.deviceId, deviceId); });
    }
    HRESULT STDMETHODCALLTYPE GetSignalPath(IPart* from, IPart* to, BOOL rejectMixedPaths, IPartsList** parts) override
    {
        const std::optional<UINT> fromId = LocalIdOf(from);
        const std::optional<UINT> toId = LocalIdOf(to);
        const std::string arguments = machine::LocalIdText(fromId.value_or(0)) + ", " +
                                      machine::LocalIdText(toId.value_or(0)) + ", " + std::to_string(rejectMixedPaths);
        return Recorded("IDeviceTopology::GetSignalPath", object_, arguments, [&]() -> HRESULT {
            *parts = nullptr;
            if (!fromId || !toId)
                return E_INVALIDARG;
            const auto& paths = owner_.topology.signalPaths;
            if (std::find(paths.begin(), paths.end(), std::pair(*fromId, *toId)) == paths.end())
                return E_NOTFOUND;
            return HandOut(MakePartsList(SharedMachine(), object_, owner_, {*fromId, *toId}), parts);
        });
    }

private:
    // Without a record of the question; none for a part of another topology.
    std::optional<UINT> LocalIdOf(IPart* part) const
    {
        if (part == nullptr)
            return std::nullopt;
        qov::TaskText globalId;
        if (FAILED(part->GetGlobalId(globalId.Put())))
            return std::nullopt;
        for (const machine::PartDescription& candidate : owner_.topology.parts)
            if (machine::GlobalId({owner_.deviceId, candidate.localId}) == globalId.Text())
                return candidate.localId;
        return std::nullopt;
    }

    const DeviceTopology owner_;
    const std::string object_;
    std::vector<const machine::PartDescription*> connectors_;
};

}  // namespace

IDeviceTopology* MakeTopology(const MachinePtr& machine, const DeviceTopology& topology)
{
    return new Topology(machine, topology);
}

}  // namespace simulation
