#include "simulation/devices/KsControl.h"

#include "machine/FilterRequest.h"
#include "machine/Utf16.h"

#include <algorithm>
#include <cstring>

namespace simulation {

namespace {

using machine::FilterRequest;

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
        const std::string arguments = machine::FilterRequestText(property, propertyLength, data != nullptr, dataLength);
        return Recorded("IKsControl::KsProperty", object_, arguments, [&] {
            FilterRequest request{};
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

    HRESULT Answer(const FilterRequest& request, ULONG length, const Reply& reply) const
    {
        const KSPROPERTY& property = request.property;
        if (length < machine::PinRequestSize)
            return machine::FilterDoesNotKnow;
        if (IsEqualGUID(property.Set, machine::AudioEngineSet)) {
            const bool known =
                property.Id == machine::AudioEngineDescriptorId && property.Flags == machine::GetTopologyFlags;
            return known ? AnswerDescriptor(request.target, reply) : machine::FilterDoesNotKnow;
        }
        const auto pin =
            std::find_if(filter_.pins.begin(), filter_.pins.end(),
                         [&](const machine::PpApiPin& candidate) { return candidate.pinId == request.target; });
        if (!IsEqualGUID(property.Set, machine::PpApiSet) || property.Flags != machine::GetFlag ||
            pin == filter_.pins.end())
            return machine::FilterDoesNotKnow;
        if (property.Id == machine::VersionTestId && length == machine::PinRequestSize)
            return reply.Give(pin->version.data(), pin->version.size());
        if (property.Id == machine::ModuleListId && length == sizeof(FilterRequest) &&
            IsEqualGUID(request.selector, machine::ModuleListSelector) && pin->reply)
            return AnswerModuleList(*pin, reply);
        return machine::FilterDoesNotKnow;
    }

    HRESULT AnswerDescriptor(ULONG nodeId, const Reply& reply) const
    {
        for (const machine::AudioEngineNode& node : filter_.audioEngineNodes) {
            if (node.nodeId != nodeId)
                continue;
            const ULONG descriptor[] = {node.hostPin, node.offloadPin, node.loopbackPin};
            return reply.Give(descriptor, sizeof(descriptor));
        }
        return machine::FilterDoesNotKnow;
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
