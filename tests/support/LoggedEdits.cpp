#include "support/LoggedEdits.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

using Log = std::vector<std::string>;

Log Narrow(const std::vector<std::wstring>& log)
{
    Log texts;
    for (const std::wstring& message : log) {
        std::string& text = texts.emplace_back();
        for (const wchar_t unit : message)
            text += static_cast<char>(unit);
    }
    return texts;
}

// The blocks in the order in which each of the first two files has them switched.
constexpr struct {
    const char* label;
    const char* name;
} Blocks[] = {{"LFX/MFX", "OrvexZan_Lfx_Mfx_Apo"},
              {"SFX", "OrvexZan_Sfx_Apo"},
              {"EFX", "OrvexZan_Efx_Apo"},
              {"MFX", "OrvexZan_SPATIALF"}};
constexpr const char* EndTags[] = {"</ParameterBlock>", "</ConfigurableDomain>"};

void Switch(std::string& bytes, const std::string& name, const char* endTag, bool on)
{
    const std::size_t named = bytes.find("Name=\"" + name + '"');
    const std::size_t start = bytes.rfind('\n', named) + 1;
    const bool isOn = bytes.compare(start, 4, "<!--") != 0;
    if (isOn == on)
        return;
    const std::size_t end = bytes.find(endTag, named) + std::strlen(endTag);
    if (on)
        bytes.erase(end, 3).erase(start, 4);
    else
        bytes.insert(end, "-->").insert(start, "<!--");
}

bool SwitchBlocks(std::string& bytes, std::size_t file, const Log& log)
{
    Log switches;
    std::copy_if(log.begin(), log.end(), std::back_inserter(switches),
                 [](const std::string& message) { return message.starts_with('+') || message.starts_with('-'); });
    if (switches.size() < (file + 1) * std::size(Blocks))
        return false;
    for (std::size_t row = 0; row < std::size(Blocks); ++row) {
        const std::string& message = switches[file * std::size(Blocks) + row];
        if (message.substr(1) != Blocks[row].label)
            return false;
        Switch(bytes, Blocks[row].name, EndTags[file], message.starts_with('+'));
    }
    return true;
}

constexpr struct {
    const char* logged;
    const char* before;  // in the file
    const char* tag;     // what stays of that
} Values[] = {
    {"DeviceId: ", "DeviceId:func_01&amp;ven_0000", "DeviceId:"},
    {"EndpointName: ", "EndpointName:unset", "EndpointName:"},
    {"APO GUID: ", "ModuleGuid:{00000000-0000-0000-0000-000000000000}", "ModuleGuid:"},
    {"DEFAULT Mode ParamId: ", "DefaultMode\" Param=\"ParamId:unset", "DefaultMode\" Param=\"ParamId:"},
    {"\r\nSPEECH Mode ParamId: ", "SpeechMode\" Param=\"ParamId:unset", "SpeechMode\" Param=\"ParamId:"},
};

void SetValues(std::string& bytes, const Log& log)
{
    for (const auto& row : Values)
        for (std::string text : log) {
            const std::size_t found = text.find(row.logged);
            if (found == std::string::npos || (found != 0 && !text.starts_with("DEFAULT Mode")))
                continue;
            text.erase(0, found + std::strlen(row.logged));
            if (std::string(row.logged).starts_with("DEFAULT"))
                text.erase(text.find('\r'));
            Replace(text, "\n", "\r\n");
            Replace(bytes, row.before, row.tag + text);
        }
}

}  // namespace

std::string LoggedEdits(std::string bytes, std::size_t file, const std::vector<std::wstring>& log)
{
    const Log texts = Narrow(log);
    if (file < std::size(EndTags) && !SwitchBlocks(bytes, file, texts))
        return {};
    SetValues(bytes, texts);
    return bytes;
}

void Replace(std::string& text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
}
