#include "host/review/ShownText.h"

#include "machine/Utf16.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace host {

namespace {

constexpr std::string_view Replacement = "\xEF\xBF\xBD";

struct Character {
    char32_t code = 0;
    std::size_t size = 0;  // in bytes; 0: the first byte begins no well-formed sequence
};

Character FirstCharacter(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t size = lead >= 0xC2 && lead < 0xE0   ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
    if (size == 0 || size > text.size())
        return {};
    char32_t code = lead & (0x7Fu >> size);
    for (const char byte : text.substr(1, size - 1)) {
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80)
            return {};
        code = (code << 6) | (static_cast<unsigned char>(byte) & 0x3F);
    }
    const bool overlong = (size == 3 && code < 0x800) || (size == 4 && code < 0x10000);
    if (overlong || (code >= 0xD800 && code < 0xE000) || code > 0x10FFFF)
        return {};
    return {code, size};
}

// What a terminal would obey instead of showing.
bool IsControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x61C || code == 0x200E || code == 0x200F ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

void AppendEscaped(std::string& text, std::string_view bytes)
{
    for (const char byte : bytes) {
        char escaped[5];
        std::snprintf(escaped, sizeof(escaped), "\\x%02X", static_cast<unsigned int>(static_cast<unsigned char>(byte)));
        text += escaped;
    }
}

// Calls `take` with each character and its bytes; what is no UTF-8 comes as the replacement character.
template <class Take>
void ForEachCharacter(std::string_view text, Take take)
{
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        if (character.size == 0) {
            take(char32_t{0xFFFD}, Replacement);
            text.remove_prefix(1);
        } else {
            take(character.code, text.substr(0, character.size));
            text.remove_prefix(character.size);
        }
    }
}

constexpr std::wstring_view MessagesWithPath[] = {L"Reading QOV configuration from: ", L"Reading QOV settings from: ",
                                                  L"Reading APO pipelines definition from: "};

}  // namespace

std::string Utf8(std::string_view bytes)
{
    std::string text;
    ForEachCharacter(bytes, [&text](char32_t, std::string_view character) { text += character; });
    return text;
}

std::string Harmless(std::string_view bytes)
{
    std::string text;
    ForEachCharacter(bytes, [&text](char32_t code, std::string_view character) {
        if (IsControl(code))
            AppendEscaped(text, character);
        else
            text += character;
    });
    return text;
}

std::string Argument(std::string_view bytes)
{
    constexpr std::string_view Plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._/\\:-";
    std::string text = Harmless(bytes);
    if (text.find_first_not_of(Plain) == std::string::npos)
        return text;
    // What a POSIX shell would not leave alone between double quotes; cmd knows no others.
    if (text.find_first_of("$`\"!") == std::string::npos)
        return "\"" + text + "\"";
    for (std::size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 4)
        text.replace(at, 1, R"('\'')");
    return "'" + text + "'";
}

std::string HarmlessLines(std::string_view bytes)
{
    std::string text;
    while (true) {
        const std::size_t end = bytes.find('\n');
        std::string_view line = bytes.substr(0, end);
        if (end != std::string_view::npos && line.ends_with('\r'))
            line.remove_suffix(1);
        text += Harmless(line);
        if (end == std::string_view::npos)
            return text;
        text += '\n';
        bytes.remove_prefix(end + 1);
    }
}

std::size_t Width(std::string_view text)
{
    // Continuation bytes take no room.
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::string NarrowUnits(std::wstring_view text)
{
    std::string bytes;
    for (const wchar_t unit : text)
        bytes += static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
    return bytes;
}

std::string LogText(const std::wstring& message)
{
    for (const std::wstring_view start : MessagesWithPath)
        if (message.starts_with(start))
            return Utf8(NarrowUnits(message));
    return machine::Utf16ToUtf8(message);
}

}  // namespace host
