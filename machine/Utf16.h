// UTF-16 in wide texts (one code unit each, whatever the width of wchar_t) to and from UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace machine {

// `text` is well-formed UTF-8.
std::wstring Utf8ToUtf16(std::string_view text);

// Surrogate pairs are joined; an unpaired surrogate becomes U+FFFD.
std::string Utf16ToUtf8(std::wstring_view text);

// Whether there is no unpaired surrogate, so that the text comes back from UTF-8 as it was.
bool IsUtf16(std::wstring_view text);

}  // namespace machine
