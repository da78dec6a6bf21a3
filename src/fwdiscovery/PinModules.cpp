#include "fwdiscovery/PinModules.h"

#include "common/Failure.h"
#include "common/Logging.h"
#include "discovery/EndpointRegistry.h"
#include "fwdiscovery/KsRequest.h"

#include <algorithm>
#include <string>

namespace qov {

namespace {

constexpr GUID PpApiSet{0xbae9ce37, 0xaa99, 0x4bc7, {0x9b, 0xdf, 0x4c, 0xbf, 0x3d, 0x23, 0xe1, 0xb9}};
constexpr std::uint32_t VersionTestId = 0;
constexpr std::uint32_t ModuleListId = 1;
static_assert(KsPinRequest::Size() == 32);

constexpr std::size_t VersionReplySize = 5;
constexpr std::uint8_t PpApiVersion = 1;  // in the first byte of the version reply

// The module list request carries this selector behind the pin request.
constexpr GUID ModuleListSelector{0xc18e2f7e, 0x933d, 0x4965, {0xb7, 0xd1, 0x1e, 0xef, 0x22, 0x8d, 0x2a, 0xf3}};
using ModuleListRequest = KsRequest<sizeof(GUID)>;
static_assert(ModuleListRequest::Size() == 48);

// ModuleListReply: a head, then one FwModuleEntry after the other.
constexpr WireField ModulesSizeField{0, 4};
constexpr WireField ModulesCountField{4, 4};
constexpr std::size_t ReplyHeadSize = 8;
static_assert(ModulesSizeField.End() == ModulesCountField.offset && ModulesCountField.End() == ReplyHeadSize);

constexpr WireField EntryTypeField{0, 4};
constexpr WireField EntryGuidField{4, 16};
constexpr WireField EntryRestField{20, 128};
constexpr std::size_t EntrySize = 148;
static_assert(EntryTypeField.End() == EntryGuidField.offset && EntryGuidField.End() == EntryRestField.offset &&
              EntryRestField.End() == EntrySize);

bool SpeaksPpApi(IKsControl& control, ULONG pinId)
{
    KsPinRequest request(PpApiSet, VersionTestId, KsFlagGet, pinId);
    std::uint8_t version[VersionReplySize] = {};
    ULONG returned = 0;
    return SUCCEEDED(
               control.KsProperty(request.Property(), KsPinRequest::Size(), version, sizeof(version), &returned)) &&
           version[0] == PpApiVersion;
}

// The module list reply; empty when the pin has none.
Bytes ReadModuleList(IKsControl& control, ULONG pinId)
{
    ModuleListRequest request(PpApiSet, ModuleListId, KsFlagGet, pinId);
    request.SetExtra(ModuleListSelector);
    ULONG size = 0;
    if (FAILED(control.KsProperty(request.Property(), ModuleListRequest::Size(), nullptr, 0, &size)) ||
        size > MaxReplySize)
        return {};
    Bytes reply(size, 0);
    ULONG returned = 0;
    if (FAILED(control.KsProperty(request.Property(), ModuleListRequest::Size(), reply.data(), size, &returned)))
        return {};
    if (returned != 0)
        reply.resize(std::min(returned, size));
    return reply;
}

ModuleType ToModuleType(std::uint32_t fwModuleType)
{
    switch (fwModuleType) {
        case 0:
            return ModuleType::SFX;
        case 1:
            return ModuleType::MFX;
        case 2:
            return ModuleType::EFX;
        default:
            Fail("Unsupported IAP module type");
    }
}

}  // namespace

void ReadPinModules(const ComPtr<IKsControl>& control, ULONG pinId, const AudioEndpoint& endpoint, ILogger& logger,
                    ModuleList& modules)
{
    LogInfo(logger, L"Using pin id:" + std::to_wstring(pinId) + L"\nTesting PP API: comparing versions...");
    if (!SpeaksPpApi(*control.Get(), pinId))
        return;
    LogInfo(logger, L"Obtaining modules list...");
    const Bytes reply = ReadModuleList(*control.Get(), pinId);
    if (reply.size() < ReplyHeadSize)
        return;
    const std::uint32_t count = ReadNumber(reply.data(), ModulesCountField);
    LogInfo(logger, L"Modules count:" + std::to_wstring(count) + L" modules size:" +
                        std::to_wstring(ReadNumber(reply.data(), ModulesSizeField)));
    if (count > (reply.size() - ReplyHeadSize) / EntrySize || count > MaxEndpointModules - modules.size())
        return;

    for (std::size_t index = 0; index < count; ++index) {
        const std::uint8_t* const entry = reply.data() + ReplyHeadSize + index * EntrySize;
        AudioModule module;
        module.Endpoint.AudioEndpointGuid = endpoint.AudioEndpointGuid;
        module.Endpoint.Flow = endpoint.Flow;
        module.ModuleGuid = ReadGuid(entry, EntryGuidField);
        module.Location = ModuleLocation::FW;
        module.Type = ToModuleType(ReadNumber(entry, EntryTypeField));
        module.Level = ModuleLevel::NotWrapped;
        module.KsControl = control;
        module.PropertyPinId = pinId;
        ReadEndpointIdentity(module.Endpoint, logger);
        modules.push_back(std::move(module));
    }
}

}  // namespace qov
