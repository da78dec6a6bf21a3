#include "fwdiscovery/FwDiscovery.h"

namespace qov::AudioModulesUtils {

ModuleList DiscoverFwModules(ILogger& logger)
{
    logger.Log(LogLevel::Info, L"AudioModulesUtils: DiscoverFwModules() starting...");
    logger.Log(LogLevel::Info, L"AudioModulesUtils: DiscoverFwModules() completed successfully.");
    return {};
}

}  // namespace qov::AudioModulesUtils
