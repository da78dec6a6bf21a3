#include "xmledit/QuotedValues.h"

#include "common/Failure.h"

#include <algorithm>

namespace qov {

void SetQuotedValue(LineFile& lines, const std::string& keyword, const std::string& tag, const std::string& value)
{
    bool keywordSeen = keyword.empty();
    bool tagSeen = false;
    const std::string& sought = keyword.empty() ? tag : keyword;
    for (auto line = lines.FindDown(0, sought); line; line = lines.FindDown(lines.Next(*line), sought)) {
        keywordSeen = true;
        const std::string_view text = lines[*line];
        const std::size_t tagStart = text.find(tag);
        if (tagStart == std::string_view::npos)
            continue;
        tagSeen = true;
        const std::size_t quote = text.find('"', tagStart);
        if (quote == std::string_view::npos)
            continue;
        lines.Edit(*line).replace(tagStart, quote - tagStart, tag + value);
        return;
    }
    if (!keywordSeen)
        Fail("No keyword found: " + tag);
    if (!tagSeen)
        Fail("No tag found: " + tag);
    Fail("No closing quotation mark found for tag: " + tag);
}

void SetDeviceId(LineFile& lines, const std::string& value) { SetQuotedValue(lines, "", "DeviceId:", value); }

void SetEndpointName(LineFile& lines, const std::string& value) { SetQuotedValue(lines, "", "EndpointName:", value); }

void SetModuleGuid(LineFile& lines, const std::string& value) { SetQuotedValue(lines, "", "ModuleGuid:", value); }

void SetModeParamIds(LineFile& lines, const std::string& defaultModeValue, const std::string& speechModeValue)
{
    SetQuotedValue(lines, "Subeffects_DefaultMode", "ParamId:", defaultModeValue);
    SetQuotedValue(lines, "Subeffects_SpeechMode", "ParamId:", speechModeValue);
}

std::string NarrowText(const std::wstring& text)
{
    std::string narrow(text.size(), '\0');
    std::transform(text.begin(), text.end(), narrow.begin(),
                   [](wchar_t unit) { return static_cast<char>(static_cast<unsigned char>(unit & 0xFF)); });
    return narrow;
}

std::string EscapeAmpersands(const std::string& text)
{
    std::string escaped;
    for (const char byte : text) {
        escaped += byte;
        if (byte == '&')
            escaped += "amp;";
    }
    return escaped;
}

std::string CommasToColons(const std::string& text)
{
    std::string replaced = text;
    std::replace(replaced.begin(), replaced.end(), ',', ':');
    return replaced;
}

}  // namespace qov
