#include "run/ConfigurationEditing.h"

#include "common/Logging.h"
#include "common/Text.h"
#include "discovery/GuidText.h"
#include "xmledit/Blocks.h"
#include "xmledit/LineFile.h"
#include "xmledit/QuotedValues.h"

#include <utility>

namespace qov {

namespace {

using EditBlock = void (*)(LineFile& lines, const std::string& name);

// How the blocks of one file are switched, and how the run speaks of them.
struct BlockKind {
    EditBlock enable;
    EditBlock disable;
    const wchar_t* apoMessage;
    const wchar_t* spatialfMessage;
};
constexpr BlockKind Sections{EnableParameterBlock, DisableParameterBlock, L"Configuring Orvex ZAN APO sections...",
                             L"Configuring Orvex FW SPATIALF sections..."};
constexpr BlockKind Domains{EnableConfigurableDomain, DisableConfigurableDomain,
                            L"Configuring Orvex ZAN APO domains...", L"Configuring SPATIALF FW domains..."};

// A block that is enabled for an active APO in one of these effect slots.
struct ApoRow {
    const char* name;
    ModuleType types[2];  // a single one stands twice
    const wchar_t* label;
};
constexpr ApoRow ApoRows[] = {
    {"OrvexZan_Lfx_Mfx_Apo", {ModuleType::LFX, ModuleType::MFX}, L"LFX/MFX"},
    {"OrvexZan_Sfx_Apo", {ModuleType::SFX, ModuleType::SFX}, L"SFX"},
    {"OrvexZan_Efx_Apo", {ModuleType::EFX, ModuleType::EFX}, L"EFX"},
};
constexpr char SpatialfBlockName[] = "OrvexZan_SPATIALF";
constexpr wchar_t SpatialfLabel[] = L"MFX";

// Property keys of an effect slot's DEFAULT and SPEECH modes.
struct ModeParamIds {
    ModuleType type;
    const char* defaultMode;
    const char* speechMode;
};
constexpr ModeParamIds ModeParamIdTable[] = {
    {ModuleType::LFX, "{f47a9d84-6ca7-4c5e-a853-9f91bc1991ae},1", "{6696ec45-ca78-414a-8666-C9ed965acfee},1"},
    {ModuleType::SFX, "{f47a9d84-6ca7-4c5e-a853-9f91bc1991ae},5", "{6696ec45-ca78-414a-8666-C9ed965acfee},5"},
    {ModuleType::MFX, "{f47a9d84-6ca7-4c5e-a853-9f91bc1991ae},6", "{6696ec45-ca78-414a-8666-C9ed965acfee},6"},
    {ModuleType::EFX, "{f47a9d84-6ca7-4c5e-a853-9f91bc1991ae},7", "{6696ec45-ca78-414a-8666-C9ed965acfee},7"},
};

LineFile ReadLogged(const wchar_t* what, const std::string& path, ILogger& logger)
{
    LogInfo(logger, std::wstring(L"Reading ") + what + L" from: " + Widen(path) + L"...");
    return ReadLineFile(path);
}

void ToggleBlock(LineFile& lines, const BlockKind& kind, const char* name, const wchar_t* label, bool enabled,
                 ILogger& logger)
{
    LogInfo(logger, (enabled ? L"+" : L"-") + std::wstring(label));
    (enabled ? kind.enable : kind.disable)(lines, name);
}

void ToggleBlocks(LineFile& lines, const BlockKind& kind, const ValidatedModules& modules, ILogger& logger)
{
    LogInfo(logger, kind.apoMessage);
    for (const ApoRow& row : ApoRows) {
        bool enabled = false;
        for (const ModuleType type : row.types)
            enabled = enabled || (modules.activeApo && modules.activeApo->Type == type);
        ToggleBlock(lines, kind, row.name, row.label, enabled, logger);
    }
    LogInfo(logger, kind.spatialfMessage);
    ToggleBlock(lines, kind, SpatialfBlockName, SpatialfLabel, modules.spatialfModule.has_value(), logger);
}

void SetEndpointIdentity(LineFile& lines, const AudioEndpoint& endpoint, ILogger& logger)
{
    const std::string deviceId = EscapeAmpersands(NarrowText(endpoint.DeviceId));
    LogInfo(logger, L"DeviceId: " + Widen(deviceId));
    SetDeviceId(lines, deviceId);
    const std::string endpointName = NarrowText(endpoint.EndpointName);
    LogInfo(logger, L"EndpointName: " + Widen(endpointName));
    SetEndpointName(lines, endpointName);
}

void EditConfigurationFile(const std::string& path, const ValidatedModules& modules, ILogger& logger)
{
    LineFile lines = ReadLogged(L"QOV configuration", path, logger);
    if (modules.activeApo)
        SetEndpointIdentity(lines, modules.activeApo->Endpoint, logger);
    else if (modules.spatialfModule)
        SetEndpointIdentity(lines, modules.spatialfModule->Endpoint, logger);
    ToggleBlocks(lines, Sections, modules, logger);
    LogInfo(logger, L"Saving modified QOV configuration file...");
    WriteLineFile(std::move(lines), path);
}

void EditSettingsFile(const std::string& path, const ValidatedModules& modules, ILogger& logger)
{
    LineFile lines = ReadLogged(L"QOV settings", path, logger);
    ToggleBlocks(lines, Domains, modules, logger);
    LogInfo(logger, L"Saving modified QOV settings file...");
    WriteLineFile(std::move(lines), path);
}

void EditPipelinesFile(const std::string& path, const AudioModule& activeApo, ILogger& logger)
{
    LogInfo(logger, L"Setting up APO pipelines definition file...");
    LineFile lines = ReadLogged(L"APO pipelines definition", path, logger);

    const std::string guid = NarrowText(GuidToText(activeApo.ModuleGuid));
    LogInfo(logger, L"APO GUID: " + Widen(guid));
    SetModuleGuid(lines, guid);

    std::string defaultMode;
    std::string speechMode;
    for (const ModeParamIds& row : ModeParamIdTable) {
        if (row.type == activeApo.Type) {
            defaultMode = CommasToColons(row.defaultMode);
            speechMode = CommasToColons(row.speechMode);
        }
    }
    LogInfo(logger, L"DEFAULT Mode ParamId: " + Widen(defaultMode) + L"\r\nSPEECH Mode ParamId: " + Widen(speechMode));
    SetModeParamIds(lines, defaultMode, speechMode);

    LogInfo(logger, L"Saving modified APO pipelines definition file...");
    WriteLineFile(std::move(lines), path);
}

}  // namespace

void EditConfiguration(const QovXml::Config& config, const ValidatedModules& modules, ILogger& logger)
{
    EditConfigurationFile(config.ConfigurationFile, modules, logger);
    EditSettingsFile(config.SettingsFile, modules, logger);
    if (modules.activeApo)
        EditPipelinesFile(config.ApoPipelinesDefinitionFile, *modules.activeApo, logger);
}

}  // namespace qov
