#include "QovXml.h"

#include "common/Failure.h"
#include "common/Logging.h"
#include "discovery/ModuleDiscovery.h"
#include "run/ConfigurationEditing.h"
#include "run/ModuleValidation.h"

#include <objbase.h>

namespace {

// Joins the multithreaded apartment for a run. Every object that holds a COM interface must go before it.
class ComInitGuard {
public:
    ComInitGuard()
    {
        if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
            qov::Fail("Failed to initialize COM interface");
    }
    ComInitGuard(const ComInitGuard&) = delete;
    ComInitGuard& operator=(const ComInitGuard&) = delete;
    ~ComInitGuard() { CoUninitialize(); }
};

}  // namespace

void QovXml::ConfigureQovXmls(const Config& config, ILogger& logger)
{
    qov::LogInfo(logger, L"QovXml: ConfigureQovXmls() starting...");
    qov::LogInfo(logger, L"Initializing COM interface...");
    const ComInitGuard comInitGuard;
    const qov::ModuleList modules = qov::AudioModulesUtils::DiscoverAudioModules(logger);
    qov::AudioModulesUtils::LogDiscoveredModules(logger, modules);
    const qov::ValidatedModules validated = qov::ValidateModules(modules, logger);
    qov::EditConfiguration(config, validated, logger);
    qov::LogInfo(logger, L"QovXml: ConfigureQovXmls() completed successfully");
}

QovXml& QovXml::operator=(const QovXml&) = default;
