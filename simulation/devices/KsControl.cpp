#include "simulation/devices/KsControl.h"

#include "machine/Utf16.h"

#include <algorithm>
#include <cstring>

namespace simulation {

namespace {

constexpr GUID AudioEngineSet{0x3a2f82dc, 0x886f, 0x4baa, {0x9e, 0xb4, 0x08, 0x2b, 0x90, 0x25, 0xc5, 0x36}};
constexpr GUID PpApiSet{0xbae9ce37, 0xaa99, 0x4bc7, {0x9b, 0xdf, 0x4c, 0xbf, 0x3d, 0x23, 0xe1, 0xb9}};
constexpr GUID ModuleListSelector{0xc18e2f7e, 0x933d, 0x4965, {0xb7, 0xd1, 0x1e, 0xef, 0x22, 0x8d, 0x2a, 0xf3}};

constexpr ULONG AudioEngineDescriptorId = 6;
constexpr ULONG VersionTestId = 0;
constexpr ULONG ModuleListId = 1;
constexpr ULONG GetFlag = 0x1;
constexpr ULONG GetTopologyFlags = 0x10000001;

constexpr HRESULT NotAnswered = HRESULT_FROM_WIN32(ERROR_NOT_FOUND);

// A request as the driver reads it from its memory.
struct Request {
    KSPROPERTY property;
    ULONG target;
    ULONG reserved;
    GUID selector;
};
static_assert(sizeof(Request) == 48);
constexpr ULONG PinRequestSize = 32;

std::string HexOf(const void* data, std::size_t size)
{
    constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    for (const auto* byte = static_cast<const std::uint8_t*>(data); size-- > 0; ++byte) {
        text += Digits[*byte >> 4];
        text += Digits[*byte & 0xF];
    }
    return text;
}

class KsControl final : public ComObject<IKsControl> {
public:
    KsControl(MachinePtr machine, const machine::AdapterDevice& device)
        : ComObject(std::move(machine)), filter_(*device.filter), object_(machine::Utf16ToUtf8(device.id))
    {
    }

    // Recorded with the bytes of the request and the room for the reply.
    HRESULT STDMETHODCALLTYPE KsProperty(PKSPROPERTY property, ULONG propertyLength, void* data, ULONG dataLength,
                                         ULONG* bytesReturned) override
    {
        const std::string arguments = HexOf(property, propertyLength) + ", " + (data == nullptr ? "no data" : "data") +
                                      " " + std::to_string(dataLength);
        return Recorded("IKsControl::KsProperty", object_, arguments, [&] {
            Request request{};
            std::memcpy(&request, property, std::min<std::size_t>(propertyLength, sizeof(request)));
            const HRESULT result =
                Answer(request, propertyLength, {static_cast<std::uint8_t*>(data), dataLength, *bytesReturned});
            if (FAILED(result))
                *bytesReturned = 0;
            return result;
        });
    }
    HRESULT STDMETHODCALLTYPE KsMethod(PKSMETHOD, ULONG, void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE KsEvent(PKSEVENT, ULONG, void*, ULONG, ULONG*) override { return E_NOTIMPL; }

private:
    // Where the reply goes.
    struct Reply {
        std::uint8_t* data;
        ULONG room;
        ULONG& returned;

        HRESULT Give(const void* bytes, std::size_t size) const
        {
            returned = static_cast<ULONG>(std::min<std::size_t>(size, room));
            if (returned > 0)
                std::memcpy(data, bytes, returned);
            return S_OK;
        }
    };

    HRESULT Answer(const Request& request, ULONG length, const Reply& reply) const
    {
        const KSPROPERTY& property = request.property;
        if (length < PinRequestSize)
            return NotAnswered;
        if (IsEqualGUID(property.Set, AudioEngineSet)) {
            const bool known = property.Id == AudioEngineDescriptorId && property.Flags == GetTopologyFlags;
            return known ? AnswerDescriptor(request.target, reply) : NotAnswered;
        }
        const auto pin =
            std::find_if(filter_.pins.begin(), filter_.pins.end(),
                         [&](const machine::PpApiPin& candidate) { return candidate.pinId == request.target; });
        if (!IsEqualGUID(property.Set, PpApiSet) || property.Flags != GetFlag || pin == filter_.pins.end())
            return NotAnswered;
        if (property.Id == VersionTestId && length == PinRequestSize)
            return reply.Give(pin->version.data(), pin->version.size());
        if (property.Id == ModuleListId && length == sizeof(Request) &&
            IsEqualGUID(request.selector, ModuleListSelector) && pin->reply)
            return AnswerModuleList(*pin, reply);
        return NotAnswered;
    }

    HRESULT AnswerDescriptor(ULONG nodeId, const Reply& reply) const
    {
        for (const machine::AudioEngineNode& node : filter_.audioEngineNodes) {
            if (node.nodeId != nodeId)
                continue;
            const ULONG descriptor[] = {node.hostPin, node.offloadPin, node.loopbackPin};
            return reply.Give(descriptor, sizeof(descriptor));
        }
        return NotAnswered;
    }

    static HRESULT AnswerModuleList(const machine::PpApiPin& pin, const Reply& reply)
    {
        if (reply.room == 0) {
            reply.returned = pin.reportedSize.value_or(static_cast<ULONG>(pin.reply->size()));
            return S_OK;
        }
        const ULONG before = reply.returned;
        const HRESULT result = reply.Give(pin.reply->data(), pin.reply->size());
        reply.returned = pin.leavesReturnedSize ? before : pin.returnedSize.value_or(reply.returned);
        return result;
    }

    const machine::FilterDescription& filter_;
    const std::string object_;
};

}  // namespace

IKsControl* MakeKsControl(const MachinePtr& machine, const machine::AdapterDevice& device)
{
    return new KsControl(machine, device);
}

}  // namespace simulation
