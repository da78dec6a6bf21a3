#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

namespace qov::AudioModulesUtils {

// Every audio processing module of the machine: the firmware modules, then the APOs. COM is initialised on this thread.
// Throws what DiscoverFwModules and DiscoverApoModules throw.
ModuleList DiscoverAudioModules(ILogger& logger);

// Logs the list as one message of many lines.
void LogDiscoveredModules(ILogger& logger, ModuleList modules);

}  // namespace qov::AudioModulesUtils
