#include "machine/JsonValues.h"

#include "machine/MachineDescription.h"
#include "machine/Utf16.h"

#include <objbase.h>

#include <limits>
#include <sstream>
#include <stdexcept>

namespace machine {

namespace {

constexpr const char* HexDigits = "0123456789abcdefABCDEF";

}  // namespace

std::wstring ReadWideText(const JsonPlace& place) { return Utf8ToUtf16(place.Text()); }

std::string WriteWideText(const std::wstring& text)
{
    if (!IsUtf16(text))
        throw std::runtime_error("The text \"" + Utf16ToUtf8(text) +
                                 "\" has an unpaired surrogate, which JSON cannot hold");
    return Utf16ToUtf8(text);
}

bool RegistryNameOrder::operator()(const std::wstring& left, const std::wstring& right) const
{
    return CompareStringOrdinal(left.c_str(), static_cast<int>(left.size()), right.c_str(),
                                static_cast<int>(right.size()), TRUE) == CSTR_LESS_THAN;
}

GUID ReadGuid(const JsonPlace& place)
{
    constexpr const char* Kind = "a text: a GUID in braces";
    GUID guid{};
    const std::wstring text = Utf8ToUtf16(place.Text(Kind));
    if (text.empty() || text.front() != L'{' || FAILED(CLSIDFromString(text.c_str(), &guid)))
        place.Refuse(std::string("must be ") + Kind);
    return guid;
}

std::string WriteGuid(const GUID& guid) { return Utf16ToUtf8(LowerGuidText(guid)); }

Bytes ReadBytes(const JsonPlace& place)
{
    constexpr const char* Kind = "a text: bytes as pairs of hexadecimal digits, separated by blanks";
    Bytes bytes;
    std::istringstream text(place.Text(Kind));
    for (std::string pair; text >> pair;) {
        if (pair.size() != 2 || pair.find_first_not_of(HexDigits) != std::string::npos)
            place.Refuse(std::string("must be ") + Kind);
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(pair, nullptr, 16)));
    }
    return bytes;
}

std::string WriteBytes(const Bytes& bytes)
{
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += text.empty() ? "" : " ";
        text += {HexDigits[byte >> 4], HexDigits[byte & 0xF]};
    }
    return text;
}

std::uint32_t ReadUnsigned(const JsonPlace& place)
{
    return static_cast<std::uint32_t>(place.Number(0, std::numeric_limits<std::uint32_t>::max()));
}

UINT ReadLocalId(const JsonPlace& place)
{
    constexpr const char* Kind = "a text: a local id in eight hexadecimal digits";
    const std::string text = place.Text(Kind);
    if (text.size() != 8 || text.find_first_not_of(HexDigits) != std::string::npos)
        place.Refuse(std::string("must be ") + Kind);
    return static_cast<UINT>(std::stoul(text, nullptr, 16));
}

}  // namespace machine
