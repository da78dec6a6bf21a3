#include "machine/Utf16.h"

#include <cstdint>

namespace machine {

namespace {

constexpr char32_t ReplacementCharacter = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
char32_t Unit(wchar_t unit) { return static_cast<char32_t>(unit) & 0xFFFF; }

void AppendUtf8(std::string& text, char32_t character)
{
    const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    const auto continuation = [&](int shift) { append(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | (character >> 6));
        continuation(0);
    } else if (character < 0x10000) {
        append(0xE0 | (character >> 12));
        continuation(6);
        continuation(0);
    } else {
        append(0xF0 | (character >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

}  // namespace

std::wstring Utf8ToUtf16(std::string_view text)
{
    std::wstring wide;
    for (std::size_t index = 0; index < text.size();) {
        const auto lead = static_cast<unsigned char>(text[index++]);
        const int following = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        char32_t character = following == 0 ? lead : lead & (0x3Fu >> following);
        for (int count = 0; count < following && index < text.size(); ++count)
            character = (character << 6) | (static_cast<unsigned char>(text[index++]) & 0x3F);
        if (character < 0x10000) {
            wide += static_cast<wchar_t>(character);
        } else {
            wide += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
            wide += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return wide;
}

std::string Utf16ToUtf8(std::wstring_view text)
{
    std::string narrow;
    for (std::size_t index = 0; index < text.size(); ++index) {
        char32_t character = Unit(text[index]);
        if (IsHighSurrogate(character) && index + 1 < text.size() && IsLowSurrogate(Unit(text[index + 1]))) {
            ++index;
            character = 0x10000 + ((character - 0xD800) << 10) + (Unit(text[index]) - 0xDC00);
        } else if (IsHighSurrogate(character) || IsLowSurrogate(character)) {
            character = ReplacementCharacter;
        }
        AppendUtf8(narrow, character);
    }
    return narrow;
}

bool IsUtf16(std::wstring_view text) { return Utf8ToUtf16(Utf16ToUtf8(text)) == text; }

}  // namespace machine
