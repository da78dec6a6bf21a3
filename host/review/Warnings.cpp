#include "host/review/Warnings.h"

#include "host/review/EachFile.h"
#include "host/review/LineChanges.h"
#include "host/review/ShownText.h"
#include "host/review/WellFormed.h"

#include <algorithm>
#include <array>

namespace host {

namespace {

enum Text : std::size_t {
    SectionMissing,
    DomainMissing,
    NothingFound,
    NewerGeneration,
    NoEndpoint,
    LineEnds,
    NotWellFormed
};

constexpr std::array<std::string_view, 7> Texts{
    "The section name \"{name}\" occurs nowhere in {path}: it cannot be switched there.",
    "The domain name \"{name}\" occurs nowhere in {path}: it cannot be switched there.",
    "No Orvex module was found on this machine, so every section and domain is switched off.",
    "Effects for Windows 8.1 and later are registered, but the system reports Windows 8.0, so they are passed over. "
    "The likely cause is that the program has no application manifest for later versions of Windows, or runs in a "
    "compatibility mode.",
    "No audio endpoint is active: nothing can be found without one. Plug in or enable the device.",
    "The line ends of {path} change from LF to CR LF.",
    "The file {path} is not well-formed XML: line {line}: {reason}. Whether the edits harm it is not checked.",
};

void Replace(std::string& text, std::string_view place, std::string_view value)
{
    if (const std::size_t found = text.find(place); found != std::string::npos)
        text.replace(found, place.size(), value);
}

// "{path}" comes last: the others cannot hold it, a path can hold anything.
std::string Fill(Text text, const std::string& path, std::string_view name = {}, const XmlFault& fault = {})
{
    std::string filled(Texts[text]);
    Replace(filled, "{name}", name);
    Replace(filled, "{line}", std::to_string(fault.line));
    Replace(filled, "{reason}", fault.reason);
    Replace(filled, "{path}", Harmless(path));
    return filled;
}

bool IsNewerEffect(const FoundModule& module)
{
    return module.location == "APO" && (module.type == "SFX" || module.type == "MFX" || module.type == "EFX");
}

void WarnOfMachine(std::vector<std::string>& warnings, const Findings& findings)
{
    if (findings.deviceCount == 0)
        warnings.push_back(Fill(NoEndpoint, {}));
    if (findings.makersModules == 0)
        warnings.push_back(Fill(NothingFound, {}));
    if (findings.generation == WindowsGeneration::Windows8Point0OrLower &&
        std::any_of(findings.modules.begin(), findings.modules.end(), IsNewerEffect))
        warnings.push_back(Fill(NewerGeneration, {}));
}

std::vector<std::string> WarningsOfFile(const rehearsal::FileOutcome& file)
{
    std::vector<std::string> warnings;
    if (!file.before)
        return warnings;
    if (const auto fault = WellFormedFault(*file.before))
        warnings.push_back(Fill(NotWellFormed, file.path, {}, *fault));
    if (file.after && *file.after != *file.before && HasBareLineFeed(*file.before))
        warnings.push_back(Fill(LineEnds, file.path));
    return warnings;
}

}  // namespace

std::span<const std::string_view> WarningTexts() { return Texts; }

std::vector<std::string> Warnings(const rehearsal::Outcome& outcome, const Findings& findings)
{
    std::vector<std::string> warnings;
    WarnOfMachine(warnings, findings);
    for (const BlockState& block : findings.blocks)
        if (!block.present)
            warnings.push_back(Fill(block.file == SettingsFile ? DomainMissing : SectionMissing,
                                    outcome.files[block.file].path, block.name));
    for (const std::vector<std::string>& ofFile : OfEachFile([&](std::size_t index) {
             return findings.filesRead[index] ? WarningsOfFile(outcome.files[index]) : std::vector<std::string>();
         }))
        warnings.insert(warnings.end(), ofFile.begin(), ofFile.end());
    return warnings;
}

}  // namespace host
