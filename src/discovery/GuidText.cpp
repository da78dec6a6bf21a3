#include "discovery/GuidText.h"

#include "common/Failure.h"

#include <objbase.h>

#include <algorithm>
#include <cwchar>

namespace qov {

std::wstring GuidToText(const GUID& guid)
{
    wchar_t text[39];
    const auto* const last = guid.Data4;
    std::swprintf(text, 39, L"{%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x}",
                  static_cast<unsigned int>(guid.Data1), static_cast<unsigned int>(guid.Data2),
                  static_cast<unsigned int>(guid.Data3), last[0], last[1], last[2], last[3], last[4], last[5], last[6],
                  last[7]);
    return text;
}

GUID TextToGuid(const std::wstring& text)
{
    GUID guid{};
    FailIfFailed(CLSIDFromString(text.c_str(), &guid), "Call to CLSIDFromString() API failed with error code: 0x");
    return guid;
}

std::vector<std::wstring> SplitText(const std::wstring& text, wchar_t delimiter)
{
    std::vector<std::wstring> pieces;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(delimiter, start), text.size());
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

std::wstring BytesToText(const Bytes& bytes)
{
    std::wstring text(bytes.size() / 2, L'\0');
    for (std::size_t index = 0; index < text.size(); ++index)
        text[index] = static_cast<wchar_t>(bytes[2 * index] | (bytes[2 * index + 1] << 8));
    return text;
}

Bytes TextToBytes(const std::wstring& text)
{
    Bytes bytes;
    bytes.reserve(2 * (text.size() + 1));
    for (const wchar_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>((unit >> 8) & 0xFF));
    }
    bytes.insert(bytes.end(), 2, 0);
    return bytes;
}

}  // namespace qov
