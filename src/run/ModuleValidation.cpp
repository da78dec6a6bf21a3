#include "run/ModuleValidation.h"

#include "common/Failure.h"
#include "common/Logging.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace qov {

namespace {

constexpr std::size_t MaxSpatialfModules = 3;

// The APOs that count on the running Windows.
struct ApoModes {
    ModuleList lfxMfx;
    ModuleList efx;
    ModuleList sfx;
};

bool OnSameEndpoint(const AudioModule& left, const AudioModule& right)
{
    return left.Endpoint.DeviceId == right.Endpoint.DeviceId &&
           left.Endpoint.EndpointName == right.Endpoint.EndpointName;
}

// Takes the counting lists out of the selected ones.
ApoModes ModesOfThisWindows(ModuleList lfxApos, ModuleList mfxApos, ModuleList efxApos, ModuleList sfxApos,
                            ILogger& logger)
{
    if (IsWindows8Point1OrGreater()) {
        LogInfo(logger, L"Detected Windows 8.1 or greater");
        return {std::move(mfxApos), std::move(efxApos), std::move(sfxApos)};
    }
    LogInfo(logger, L"Detected Windows 8.0 or lower");
    return {std::move(lfxApos), {}, {}};
}

std::optional<AudioModule> ActiveApo(const ApoModes& modes)
{
    const struct {
        const char* name;
        const ModuleList& apos;
    } table[] = {{"LFX/MFX", modes.lfxMfx}, {"EFX", modes.efx}, {"SFX", modes.sfx}};

    for (const auto& [name, apos] : table)
        if (apos.size() > 1)
            Fail(std::string("Invalid number of installed Orvex ZAN APOs in ") + name +
                 " mode: " + std::to_string(apos.size()));

    std::optional<AudioModule> active;
    for (const auto& [name, apos] : table) {
        if (apos.empty())
            continue;
        if (active)
            Fail("APO module installed in more than one mode");
        active = apos.front();
    }
    return active;
}

std::optional<AudioModule> FirstSpatialfModule(const ModuleList& spatialfModules)
{
    if (spatialfModules.size() > MaxSpatialfModules)
        Fail("Invalid number of discovered SPATIALF modules: " + std::to_string(spatialfModules.size()));
    if (spatialfModules.empty())
        return std::nullopt;
    const AudioModule& first = spatialfModules.front();
    if (!std::all_of(spatialfModules.begin(), spatialfModules.end(),
                     [&first](const AudioModule& module) { return OnSameEndpoint(first, module); }))
        Fail("Invalid SPATIALF modules configuration.");
    return first;
}

}  // namespace

ValidatedModules ValidateModules(const ModuleList& modules, ILogger& logger)
{
    ModuleList lfxApos = GetApoModulesOfMode(modules, ModuleType::LFX);
    ModuleList mfxApos = GetApoModulesOfMode(modules, ModuleType::MFX);
    ModuleList efxApos = GetApoModulesOfMode(modules, ModuleType::EFX);
    ModuleList sfxApos = GetApoModulesOfMode(modules, ModuleType::SFX);
    const ModuleList spatialfModules = GetSpatialfModules(modules);

    LogInfo(logger, L"Found Orvex SPATIALF FW modules count: " + std::to_wstring(spatialfModules.size()) +
                        L"\nFound Orvex ZAN APO modules count: "
                        L"\n* LFX (Windows 8.0 & lower): " +
                        std::to_wstring(lfxApos.size()) + L"\n* EFX (Windows 8.1 & later): " +
                        std::to_wstring(efxApos.size()) + L"\n* MFX (Windows 8.1 & later): " +
                        std::to_wstring(mfxApos.size()) + L"\n* SFX (Windows 8.1 & later): " +
                        std::to_wstring(sfxApos.size()) + L"\n");

    ValidatedModules validated;
    validated.activeApo = ActiveApo(
        ModesOfThisWindows(std::move(lfxApos), std::move(mfxApos), std::move(efxApos), std::move(sfxApos), logger));
    validated.spatialfModule = FirstSpatialfModule(spatialfModules);
    if (validated.activeApo && validated.spatialfModule &&
        !OnSameEndpoint(*validated.activeApo, *validated.spatialfModule))
        Fail("Orvex ZAN APO & FW audio modules found on different endpoints");
    return validated;
}

ModuleList SelectModulesByGuid(const ModuleList& modules, const GUID& guid)
{
    ModuleList selected;
    std::copy_if(modules.begin(), modules.end(), std::back_inserter(selected),
                 [&guid](const AudioModule& module) { return module.ModuleGuid == guid; });
    return selected;
}

ModuleList GetApoModulesOfMode(const ModuleList& modules, ModuleType type)
{
    switch (type) {
        case ModuleType::LFX:
            return SelectModulesByGuid(modules, LfxApoClassId);
        case ModuleType::SFX:
            return SelectModulesByGuid(modules, SfxApoClassId);
        case ModuleType::MFX:
            return SelectModulesByGuid(modules, MfxApoClassId);
        case ModuleType::EFX:
            return SelectModulesByGuid(modules, EfxApoClassId);
        default:
            Fail("Not supported APO module type");
    }
}

ModuleList GetSpatialfModules(const ModuleList& modules) { return SelectModulesByGuid(modules, SpatialfModuleId); }

bool IsWindows8Point1OrGreater()
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    version.dwMajorVersion = 6;
    version.dwMinorVersion = 3;
    version.wServicePackMajor = 0;
    ULONGLONG mask = 0;
    for (const DWORD type : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR})
        mask = VerSetConditionMask(mask, type, VER_GREATER_EQUAL);
    return VerifyVersionInfoW(&version, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR, mask) != FALSE;
}

}  // namespace qov
