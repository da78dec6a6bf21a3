#include "machine/JsonValues.h"

#include "machine/Utf16.h"

#include <objbase.h>

#include <cwctype>
#include <limits>
#include <sstream>

namespace machine {

std::wstring ReadWideText(const JsonPlace& place) { return Utf8ToUtf16(place.Text()); }

std::wstring FoldCase(const std::wstring& name)
{
    std::wstring folded = name;
    for (wchar_t& unit : folded)
        unit = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(unit)));
    return folded;
}

GUID ReadGuid(const JsonPlace& place)
{
    GUID guid{};
    const std::wstring text = ReadWideText(place);
    if (text.empty() || text.front() != L'{' || FAILED(CLSIDFromString(text.c_str(), &guid)))
        place.Refuse("must be a GUID in braces");
    return guid;
}

Bytes ReadBytes(const JsonPlace& place)
{
    Bytes bytes;
    std::istringstream text(place.Text());
    for (std::string pair; text >> pair;) {
        if (pair.size() != 2 || pair.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            place.Refuse("must be bytes as pairs of hexadecimal digits, separated by blanks");
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(pair, nullptr, 16)));
    }
    return bytes;
}

std::uint32_t ReadUnsigned(const JsonPlace& place)
{
    return static_cast<std::uint32_t>(place.Number(0, std::numeric_limits<std::uint32_t>::max()));
}

UINT ReadLocalId(const JsonPlace& place)
{
    const std::string text = place.Text();
    if (text.size() != 8 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        place.Refuse("must be a local id in eight hexadecimal digits");
    return static_cast<UINT>(std::stoul(text, nullptr, 16));
}

}  // namespace machine
