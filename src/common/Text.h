// Texts of messages.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qov {

// Lower-case hexadecimal without leading zeros.
std::string HexText(std::uint32_t value);

// Each byte becomes the code unit of the same value.
std::wstring Widen(std::string_view text);

}  // namespace qov
