#include "snapshot/FilterReading.h"

#include "machine/FilterRequest.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace snapshot {

namespace {

using machine::Bytes;
using machine::FilterRequest;
using qov::ComPtr;

constexpr std::size_t VersionReplySize = 5;
constexpr ULONG MaxReplySize = 256 * 1024;  // a run takes no larger one

struct Reply {
    Bytes data;
    ULONG returned = 0;

    bool operator==(const Reply&) const = default;
};

// One request of a filter; the arguments as such calls are recorded with.
class KsQuestion {
public:
    KsQuestion(const GUID& set, ULONG id, ULONG flags, ULONG target, const GUID* selector = nullptr)
        : size_(selector == nullptr ? machine::PinRequestSize : static_cast<ULONG>(sizeof(FilterRequest)))
    {
        FilterRequest request{};
        request.property.Set = set;
        request.property.Id = id;
        request.property.Flags = flags;
        request.target = target;
        if (selector != nullptr)
            request.selector = *selector;
        std::memcpy(bytes_, &request, sizeof(bytes_));
    }

    // None: the request fails.
    std::optional<Reply> Put(Answers& answers, const std::wstring& deviceId, IKsControl& control, ULONG room,
                             HRESULT expected = machine::FilterDoesNotKnow)
    {
        const std::string arguments = machine::FilterRequestText(bytes_, size_, room != 0, room);
        Reply reply;
        const bool answered =
            answers.Put({"IKsControl::KsProperty", deviceId, arguments, expected}, reply, [&](Reply& given) {
                given.data.assign(room, 0);
                return control.KsProperty(reinterpret_cast<PKSPROPERTY>(bytes_), size_,
                                          room == 0 ? nullptr : given.data.data(), room, &given.returned);
            });
        return answered ? std::optional(reply) : std::nullopt;
    }

private:
    alignas(FilterRequest) std::uint8_t bytes_[sizeof(FilterRequest)] = {};
    ULONG size_;
};

// Whether what stands behind the first `size` bytes was left as it was.
bool IsUntouchedBehind(const Bytes& data, std::size_t size)
{
    return std::all_of(data.begin() + static_cast<std::ptrdiff_t>(size), data.end(),
                       [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace

void FilterReading::Read(const std::vector<machine::PartAddress>& ends, EDataFlow flow)
{
    std::set<ULONG> offloadPins;
    bool offloadPinMissing = flow == eCapture;
    for (const machine::PartAddress& end : ends) {
        if (flow == eCapture)
            continue;
        if (const auto pin = OffloadPin(end))
            offloadPins.insert(*pin);
        else
            offloadPinMissing = true;
    }
    for (const machine::PartAddress& end : ends) {
        const machine::PartDescription& part = survey_.Part(end);
        if (part.connectedTo || part.connectorType != Software_IO)
            continue;
        std::set<ULONG> candidates = offloadPins;
        if (offloadPinMissing)
            for (const UINT localId : survey_.PathsFrom(end))
                candidates.insert(localId & 0xFFFF);
        Filter& filter = Find(end.deviceId);
        for (const ULONG pinId : candidates)
            if (filter.control && !filter.pins.contains(pinId))
                filter.pins[pinId] = ReadPin(end.deviceId, *filter.control.Get(), pinId);
    }
}

FilterReading::Filter& FilterReading::Find(const std::wstring& deviceId)
{
    const auto [found, isNew] = filters_.try_emplace(deviceId);
    ComPtr<IMMDevice> device;
    if (isNew && answers_.Put({"IMMDeviceEnumerator::GetDevice", deviceId}, device,
                              [&](auto& given) { return enumerator_.GetDevice(deviceId.c_str(), given.Put()); }))
        answers_.Put(
            {"IMMDevice::Activate", deviceId, "IKsControl", E_NOINTERFACE}, found->second.control,
            [&](auto& given) { return device->Activate(__uuidof(IKsControl), CLSCTX_ALL, nullptr, given.PutVoid()); });
    return found->second;
}

std::optional<ULONG> FilterReading::OffloadPin(const machine::PartAddress& connector)
{
    Filter& filter = Find(connector.deviceId);
    const ULONG nodeId = connector.localId & 0xFFFF;
    if (!filter.control)
        return std::nullopt;
    const auto [found, isNew] = filter.nodes.try_emplace(nodeId);
    auto& node = found->second;
    if (isNew) {
        KsQuestion question(machine::AudioEngineSet, machine::AudioEngineDescriptorId, machine::GetTopologyFlags,
                            nodeId);
        ULONG descriptor[3] = {};
        if (const auto reply = question.Put(answers_, connector.deviceId, *filter.control.Get(), sizeof(descriptor))) {
            std::memcpy(descriptor, reply->data.data(), sizeof(descriptor));
            node = {nodeId, descriptor[0], descriptor[1], descriptor[2]};
        }
    }
    return node ? std::optional(node->offloadPin) : std::nullopt;
}

std::optional<machine::PpApiPin> FilterReading::ReadPin(const std::wstring& deviceId, IKsControl& control, ULONG pinId)
{
    KsQuestion question(machine::PpApiSet, machine::VersionTestId, machine::GetFlag, pinId);
    const auto reply = question.Put(answers_, deviceId, control, VersionReplySize);
    if (!reply)
        return std::nullopt;
    machine::PpApiPin pin;
    pin.pinId = pinId;
    pin.version = reply->data;
    if (reply->returned < VersionReplySize && IsUntouchedBehind(reply->data, reply->returned))
        pin.version.resize(reply->returned);
    if (reply->data[0] == 1)
        ReadModuleList(deviceId, control, pin);
    return pin;
}

// What a run sees of the reply comes out the same.
void FilterReading::ReadModuleList(const std::wstring& deviceId, IKsControl& control, machine::PpApiPin& pin)
{
    KsQuestion question(machine::PpApiSet, machine::ModuleListId, machine::GetFlag, pin.pinId,
                        &machine::ModuleListSelector);
    const auto size = question.Put(answers_, deviceId, control, 0);
    if (!size)
        return;
    pin.reply.emplace();
    pin.reportedSize = size->returned;
    if (size->returned > MaxReplySize || size->returned == 0)
        return;
    const auto reply = question.Put(answers_, deviceId, control, size->returned, S_OK);
    if (!reply)
        return;
    pin.reply = reply->data;
    const bool isShort =
        reply->returned != 0 && reply->returned < size->returned && IsUntouchedBehind(reply->data, reply->returned);
    if (isShort)
        pin.reply->resize(reply->returned);
    else
        pin.reportedSize.reset();
    if (!isShort && reply->returned != size->returned)
        pin.returnedSize = reply->returned;
}

std::optional<machine::FilterDescription> FilterReading::Describe(const std::wstring& deviceId)
{
    const Filter& filter = Find(deviceId);
    if (!filter.control)
        return std::nullopt;
    machine::FilterDescription description;
    for (const auto& [nodeId, node] : filter.nodes)
        if (node)
            description.audioEngineNodes.push_back(*node);
    for (const auto& [pinId, pin] : filter.pins)
        if (pin)
            description.pins.push_back(*pin);
    return description;
}

}  // namespace snapshot
