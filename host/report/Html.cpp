#include "host/report/Html.h"

#include "host/review/ShownText.h"

#include <cstdint>

namespace host::html {

std::string Text(std::string_view bytes)
{
    std::string text;
    for (const char byte : Harmless(bytes)) {
        switch (byte) {
            case '&':
                text += "&amp;";
                break;
            case '<':
                text += "&lt;";
                break;
            case '>':
                text += "&gt;";
                break;
            case '"':
                text += "&quot;";
                break;
            case '\'':
                text += "&#39;";
                break;
            default:
                text += byte;
        }
    }
    return text;
}

std::string Element(std::string_view nameAndAttributes, std::string_view content)
{
    const std::string_view name = nameAndAttributes.substr(0, nameAndAttributes.find(' '));
    std::string element = "<";
    element.append(nameAndAttributes).append(">").append(content).append("</").append(name).append(">");
    return element;
}

std::string Code(std::string_view bytes) { return Element("code", Text(bytes)); }

std::string Base64(std::string_view bytes)
{
    constexpr char Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t group = 0;
        for (std::size_t index = 0; index < 3; ++index)
            group = (group << 8) | (at + index < bytes.size() ? static_cast<unsigned char>(bytes[at + index]) : 0U);
        for (std::size_t index = 0; index < 4; ++index)
            text += at + index <= bytes.size() ? Digits[(group >> (18 - 6 * index)) & 0x3F] : '=';
    }
    return text;
}

}  // namespace host::html
