// The modules that the audio device's firmware runs.
#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

namespace qov::AudioModulesUtils {

// The firmware modules of the active endpoints, in the order in which they are found.
ModuleList DiscoverFwModules(ILogger& logger);

}  // namespace qov::AudioModulesUtils
