#include "discovery/ApoDiscovery.h"

#include "common/Failure.h"
#include "common/Logging.h"
#include "discovery/EndpointRegistry.h"
#include "discovery/GuidText.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace qov::AudioModulesUtils {

namespace {

// Registry value names are the text form of the platform's effect property keys: PKEY_FX_PreMixEffectClsid,
// PostMixEffectClsid, StreamEffectClsid, ModeEffectClsid and EndpointEffectClsid, indexed by ModuleType.
constexpr wchar_t FxEffectKeyPrefix[] = L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},";
constexpr const wchar_t* EffectPidTable[] = {L"1", L"2", L"5", L"6", L"7"};

constexpr wchar_t WrappedApoListKey[] = L"{bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5";

AudioModule MakeApo(const AudioEndpoint& endpoint, ModuleType type, const GUID& guid, ModuleLevel level)
{
    AudioModule module;
    module.ModuleGuid = guid;
    module.Location = ModuleLocation::APO;
    module.Type = type;
    module.Level = level;
    module.Endpoint = endpoint;
    return module;
}

// The GUID that a slot's text holds; none for any other text.
std::optional<GUID> SlotGuid(const std::wstring& text)
{
    try {
        return TextToGuid(text);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

void AppendSlotModules(const AudioEndpoint& endpoint, ModuleList& modules, ILogger& logger)
{
    for (std::size_t slot = 0; slot < std::size(EffectPidTable); ++slot) {
        const Bytes bytes = ReadEndpointProperty(endpoint, EndpointPropertyKind::FxProperties,
                                                 std::wstring(FxEffectKeyPrefix) + EffectPidTable[slot], logger);
        if (bytes.empty())
            continue;
        if (const std::optional<GUID> guid = SlotGuid(BytesToText(bytes)))
            modules.push_back(MakeApo(endpoint, static_cast<ModuleType>(slot), *guid, ModuleLevel::NotWrapped));
    }
}

// A decimal number in ASCII with optional leading white space and sign, whatever locale the host has set; what follows
// its last digit is not read.
std::int32_t TextToNumber(std::wstring_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(L" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with(L'-');
    if (negative || text.starts_with(L'+'))
        text.remove_prefix(1);
    std::string number(negative ? "-" : "");
    for (const wchar_t digit : text.substr(0, text.find_first_not_of(L"0123456789")))
        number += static_cast<char>(digit);

    std::int32_t value = 0;
    switch (std::from_chars(number.data(), number.data() + number.size(), value).ec) {
        case std::errc::invalid_argument:
            Fail("invalid stoi argument");
        case std::errc::result_out_of_range:
            Fail("stoi argument out of range");
        default:
            return value;
    }
}

void AppendWrappedModules(const AudioEndpoint& endpoint, ModuleList& modules, ILogger& logger)
{
    const Bytes bytes = ReadEndpointProperty(endpoint, EndpointPropertyKind::FxProperties, WrappedApoListKey, logger);
    for (const std::wstring& item : SplitText(BytesToText(bytes), L';')) {
        const std::vector<std::wstring> parts = SplitText(item, L',');
        if (parts.size() != 2)
            continue;
        const ModuleType type = PidToModuleType(TextToNumber(parts[1]));
        modules.push_back(MakeApo(endpoint, type, TextToGuid(parts[0]), ModuleLevel::Wrapped));
    }
}

}  // namespace

ModuleList DiscoverApoModules(ILogger& logger)
{
    LogInfo(logger, L"AudioModulesUtils: DiscoverApoModules() starting...");
    ModuleList modules;
    for (const AudioEndpoint& endpoint : GetAllAudioEndpoints(logger)) {
        AppendSlotModules(endpoint, modules, logger);
        AppendWrappedModules(endpoint, modules, logger);
    }
    LogInfo(logger, L"AudioModulesUtils: DiscoverApoModules() completed successfully.");
    return modules;
}

ModuleType PidToModuleType(std::int32_t pid)
{
    switch (pid) {
        case 1:
            return ModuleType::LFX;
        case 5:
            return ModuleType::SFX;
        case 6:
            return ModuleType::MFX;
        case 7:
            return ModuleType::EFX;
        default:
            Fail("Unsupported PID");
    }
}

}  // namespace qov::AudioModulesUtils
