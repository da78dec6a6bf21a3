#include "discovery/ModuleDiscovery.h"

#include "common/Logging.h"
#include "discovery/ApoDiscovery.h"
#include "discovery/GuidText.h"
#include "fwdiscovery/FwDiscovery.h"

#include <algorithm>
#include <locale>
#include <sstream>

namespace qov::AudioModulesUtils {

namespace {

void WriteModule(std::wostream& report, const AudioModule& module, std::int32_t number)
{
    report << L"Module #" << number << L": " << L"\n";
    report << L"* Module GUID: " << GuidToText(module.ModuleGuid) << L"\n";
    report << L"* DeviceId: " << module.Endpoint.DeviceId << L"\n";
    report << L"* EndpointName: " << module.Endpoint.EndpointName << L"\n";
    report << L"* Audio Endpoint GUID: " << GuidToText(module.Endpoint.AudioEndpointGuid) << L"\n";
    report << L"* Location: " << ModuleLocationToText(module.Location) << L"\n";
    report << L"* Level: " << ModuleLevelToText(module.Level) << L"\n";
    report << L"* Type: " << ModuleTypeToText(module.Type) << L"\n";
    report << L"* Flow: " << DataFlowToText(module.Endpoint.Flow) << L"\n";
    if (module.Location == ModuleLocation::FW)
        report << L"* Property pin ID: " << module.PropertyPinId << L"\n";
}

auto CountOf(const ModuleList& modules, ModuleLocation location)
{
    return std::count_if(modules.begin(), modules.end(),
                         [location](const AudioModule& module) { return module.Location == location; });
}

}  // namespace

ModuleList DiscoverAudioModules(ILogger& logger)
{
    LogInfo(logger, L"AudioModulesUtils: DiscoverAudioModules() starting...");
    ModuleList modules = DiscoverFwModules(logger);
    const ModuleList apos = DiscoverApoModules(logger);
    modules.insert(modules.end(), apos.begin(), apos.end());
    LogInfo(logger, L"AudioModulesUtils: DiscoverAudioModules() completed successfully.");
    return modules;
}

void LogDiscoveredModules(ILogger& logger, ModuleList modules)
{
    constexpr wchar_t Rule[] = L"=======================================";
    std::wostringstream report;
    report.exceptions(std::ios_base::badbit);  // a memory shortage ends the run, and does not cut the report short
    report.imbue(std::locale::classic());      // no grouping of digits, whatever the host has set
    report << L"\n" << Rule << L"\n" << L"Discovered audio modules: " << L"\n" << Rule << L"\n";
    std::int32_t number = 0;
    for (const AudioModule& module : modules)
        WriteModule(report, module, number++);
    report << L"\n";
    report << L"Discovered FW audio module(s) count: " << CountOf(modules, ModuleLocation::FW) << L"\n";
    report << L"Discovered APO audio module(s) count: " << CountOf(modules, ModuleLocation::APO) << L"\n";
    report << L"\n";
    LogInfo(logger, report.str());
}

}  // namespace qov::AudioModulesUtils
