#include "common/Text.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace qov {

std::string HexText(std::uint32_t value)
{
    char digits[8];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), value, 16).ptr;
    return {std::begin(digits), end};
}

std::wstring Widen(std::string_view text)
{
    std::wstring wide(text.size(), L'\0');
    std::transform(text.begin(), text.end(), wide.begin(),
                   [](char byte) { return static_cast<wchar_t>(static_cast<unsigned char>(byte)); });
    return wide;
}

}  // namespace qov
