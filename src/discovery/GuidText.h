// GUIDs, bytes and wide texts turned into each other. Wide texts are UTF-16; bytes hold a unit's low byte first.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qov {

using Bytes = std::vector<std::uint8_t>;

// 38 characters: lower-case hexadecimal in braces.
std::wstring GuidToText(const GUID& guid);

// Reads the braced form, in either letter case, up to the first NUL.
// Throws "Call to CLSIDFromString() API failed with error code: 0x" + code.
GUID TextToGuid(const std::wstring& text);

// The pieces between delimiters. A delimiter at the very end gives no empty last piece; an empty text gives none.
std::vector<std::wstring> SplitText(const std::wstring& text, wchar_t delimiter);

// An odd last byte is dropped.
std::wstring BytesToText(const Bytes& bytes);

// The text's units and one NUL unit.
Bytes TextToBytes(const std::wstring& text);

}  // namespace qov
