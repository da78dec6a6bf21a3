#include "fwdiscovery/PartsWalk.h"

#include "common/Logging.h"
#include "common/Owners.h"
#include "fwdiscovery/KsRequest.h"

#include <optional>

namespace qov {

namespace {

// The platform's KSPROPSETID_AudioEngine and KSPROPERTY_AUDIOENGINE_DESCRIPTOR.
constexpr GUID AudioEngineSet{0x3a2f82dc, 0x886f, 0x4baa, {0x9e, 0xb4, 0x08, 0x2b, 0x90, 0x25, 0xc5, 0x36}};
constexpr std::uint32_t AudioEngineDescriptorId = 6;

// The reply is a KSAUDIOENGINE_DESCRIPTOR: host, offload and loopback pin id.
constexpr std::size_t AudioEngineDescriptorSize = 12;
constexpr WireField OffloadPinField{4, 4};
static_assert(OffloadPinField.End() <= AudioEngineDescriptorSize);

// Switches the part's selector to `selected`, if it has one of this kind; none is told by an empty result.
template <class Selector>
std::optional<HRESULT> SwitchSelector(const EndpointWalk& walk, IPart& part, IPart& selected, const wchar_t* message)
{
    ComPtr<Selector> selector;
    if (FAILED(part.Activate(CLSCTX_ALL, __uuidof(Selector), selector.PutVoid())))
        return std::nullopt;
    UINT localId = 0;
    HRESULT result = selected.GetLocalId(&localId);
    if (SUCCEEDED(result))
        result = selector->SetSelection(localId, nullptr);
    if (SUCCEEDED(result))
        LogInfo(walk.logger, message);
    return result;
}

HRESULT SwitchSelectors(const EndpointWalk& walk, IPart& part, IPart& selected)
{
    auto result = SwitchSelector<IAudioInputSelector>(walk, part, selected, L"Input selector activated");
    if (!result)
        result = SwitchSelector<IAudioOutputSelector>(walk, part, selected, L"Output selector activated");
    return result.value_or(S_OK);
}

// The pin on which the filter takes offloaded streams; none when the filter does not tell.
std::optional<ULONG> ReadOffloadPin(IKsControl& control, IPart& connectorPart)
{
    UINT localId = 0;
    if (FAILED(connectorPart.GetLocalId(&localId)))
        return std::nullopt;
    KsNodeRequest request(AudioEngineSet, AudioEngineDescriptorId, KsFlagGet | KsFlagTopology, localId & 0xFFFF);
    std::uint8_t reply[AudioEngineDescriptorSize] = {};
    ULONG returned = 0;
    if (FAILED(control.KsProperty(request.Property(), KsNodeRequest::Size(), reply, sizeof(reply), &returned)))
        return std::nullopt;
    return ReadNumber(reply, OffloadPinField);
}

HRESULT FindOffloadPin(EndpointWalk& walk, IPart& part, IPart& connectorPart)
{
    LogInfo(walk.logger, L"Trying to read offload pin id...");
    ComPtr<IDeviceTopology> topology;
    HRESULT result = part.GetTopologyObject(topology.Put());
    if (FAILED(result))
        return result;
    ComPtr<IKsControl> control;
    result = ActivateKsControl(*topology.Get(), walk.enumerator, control);
    if (FAILED(result))
        return result;
    if (const auto pin = ReadOffloadPin(*control.Get(), connectorPart))
        walk.candidatePins.insert(*pin);
    else
        walk.offloadPinMissing = true;
    return S_OK;
}

HRESULT EndAtConnector(EndpointWalk& walk, IPart& part, const ComPtr<IPart>& connectorPart)
{
    LogInfo(walk.logger, L"End of parts: replacing connector");
    ComPtr<IConnector> connector;
    HRESULT result = connectorPart.QueryInto(connector);
    if (FAILED(result))
        return result;
    if (walk.flow == eRender) {
        result = FindOffloadPin(walk, part, *connectorPart.Get());
        if (FAILED(result))
            return result;
    } else {
        walk.offloadPinMissing = true;
    }
    walk.lastPart = connectorPart;
    walk.currentConnector = connector;
    return S_OK;
}

}  // namespace

WalkEnd WalkParts(EndpointWalk& walk, const ComPtr<IPart>& part, unsigned depth)
{
    if (depth >= MaxWalkDepth)
        return WalkEnd::NoConnectorReached;
    ComPtr<IPartsList> neighbours;
    if (FAILED(walk.flow == eCapture ? part->EnumPartsOutgoing(neighbours.Put())
                                     : part->EnumPartsIncoming(neighbours.Put())))
        return WalkEnd::CallFailed;
    if (!neighbours) {
        walk.logger.Log(LogLevel::Warning, L"No parts were found!");
        return WalkEnd::NoConnectorReached;
    }
    UINT count = 0;
    if (FAILED(neighbours->GetCount(&count)))
        return WalkEnd::CallFailed;

    for (UINT index = 0; index < count; ++index) {
        if (++walk.walkedParts > MaxWalkedParts)
            return WalkEnd::NoConnectorReached;
        ComPtr<IPart> neighbour;
        PartType type = Connector;
        if (FAILED(neighbours->GetPart(index, neighbour.Put())) || FAILED(neighbour->GetPartType(&type)))
            return WalkEnd::CallFailed;
        if (type == Connector)
            return FAILED(EndAtConnector(walk, *part.Get(), neighbour)) ? WalkEnd::CallFailed
                                                                        : WalkEnd::ConnectorReached;
        if (FAILED(SwitchSelectors(walk, *neighbour.Get(), *part.Get())))
            return WalkEnd::CallFailed;
        const WalkEnd deeper = WalkParts(walk, neighbour, depth + 1);
        if (deeper != WalkEnd::CallFailed)
            return deeper;
    }
    return WalkEnd::NoConnectorReached;
}

HRESULT ActivateKsControl(IDeviceTopology& topology, IMMDeviceEnumerator& enumerator, ComPtr<IKsControl>& control)
{
    TaskText deviceId;
    HRESULT result = topology.GetDeviceId(deviceId.Put());
    if (FAILED(result))
        return result;
    ComPtr<IMMDevice> device;
    result = enumerator.GetDevice(deviceId.Get(), device.Put());
    if (FAILED(result))
        return result;
    return device->Activate(__uuidof(IKsControl), CLSCTX_ALL, nullptr, control.PutVoid());
}

}  // namespace qov
