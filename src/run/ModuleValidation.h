// Which of the discovered modules are the maker's, and whether they can be configured together.
#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

#include <optional>

namespace qov {

// The maker's modules.
constexpr GUID LfxApoClassId{0xE69E0626, 0xBCB3, 0x441C, {0xA4, 0x3C, 0x66, 0x34, 0x64, 0x29, 0x88, 0x42}};
constexpr GUID SfxApoClassId{0x272B1E6E, 0x1E98, 0x4476, {0xB3, 0xF0, 0x1A, 0x46, 0x54, 0xBE, 0x10, 0x89}};
constexpr GUID MfxApoClassId{0x7BA4CEB1, 0x0A15, 0x4AE4, {0xB0, 0x90, 0x46, 0x1D, 0x48, 0xFB, 0x64, 0x1C}};
constexpr GUID EfxApoClassId{0x8C2789A2, 0xB0F3, 0x49D5, {0x8B, 0x47, 0xAF, 0x13, 0xA3, 0xF4, 0x6C, 0xFD}};
constexpr GUID SpatialfModuleId{0x7C708106, 0x3AFF, 0x40FE, {0x88, 0xBE, 0x8C, 0x99, 0x9B, 0x3F, 0x74, 0x45}};

// What the files are configured for.
struct ValidatedModules {
    std::optional<AudioModule> activeApo;
    std::optional<AudioModule> spatialfModule;  // the first of them
};

// Logs the counts of the maker's modules and the Windows generation, then applies the rules: on Windows 8.1 and later
// the APOs of the MFX, EFX and SFX modes count, on Windows 8.0 and lower those of the LFX mode; at most one APO, in one
// mode; at most three SPATIALF modules, all on one endpoint; APO and SPATIALF modules on the same endpoint.
//
// Throws "Invalid number of installed Orvex ZAN APOs in LFX/MFX mode: " (or EFX, SFX) + count, "APO module installed in
// more than one mode", "Invalid number of discovered SPATIALF modules: " + count, "Invalid SPATIALF modules
// configuration.", "Orvex ZAN APO & FW audio modules found on different endpoints".
ValidatedModules ValidateModules(const ModuleList& modules, ILogger& logger);

// The modules of a GUID, in their order.
ModuleList SelectModulesByGuid(const ModuleList& modules, const GUID& guid);

// The maker's APOs of the LFX, SFX, MFX or EFX mode; throws "Not supported APO module type" for another one.
ModuleList GetApoModulesOfMode(const ModuleList& modules, ModuleType type);

ModuleList GetSpatialfModules(const ModuleList& modules);

// As Windows reports itself to this process: a host without an application manifest that names Windows 8.1 or later is
// told Windows 8.0.
bool IsWindows8Point1OrGreater();

}  // namespace qov
