// The software effects (Audio Processing Objects) that are registered on the active endpoints.
#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

#include <cstdint>

namespace qov::AudioModulesUtils {

// Endpoint by endpoint (see GetAllAudioEndpoints), the effects of the slots LFX, GFX, SFX, MFX, EFX and then those of
// the wrapped APO list, a vendor's registry value: "CLSID,property id;CLSID,property id;...".
//
// A slot whose value is no GUID is left out, as is a wrapped item that has not exactly two parts. Throws
// "invalid stoi argument", "stoi argument out of range" and "Unsupported PID" for the property id of a wrapped item,
// and what GetAllAudioEndpoints, ReadEndpointProperty and TextToGuid throw.
ModuleList DiscoverApoModules(ILogger& logger);

// The effect slot that a property id of the wrapped APO list names. Throws "Unsupported PID".
ModuleType PidToModuleType(std::int32_t pid);

}  // namespace qov::AudioModulesUtils
