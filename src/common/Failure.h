// Failures: every one is an exception whose text is the message, and nothing else.
#pragma once

#include <windows.h>

#include <string>

namespace qov {

[[noreturn]] void Fail(const std::string& message);

// `text` followed by the result code as 32 bits in lower-case hexadecimal without leading zeros.
[[noreturn]] void FailWithCode(const std::string& text, LONG code);

inline void FailIfFailed(HRESULT result, const char* text)
{
    if (FAILED(result))
        FailWithCode(text, result);
}

}  // namespace qov
