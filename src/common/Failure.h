// Failures: every one is an exception whose text is the message, and nothing else.
#pragma once

#include <cstdint>
#include <string>

namespace qov {

[[noreturn]] void Fail(const std::string& message);

// `text` followed by the platform's result code as 32 bits in lower-case hexadecimal without leading zeros.
[[noreturn]] void FailWithCode(const std::string& text, std::int32_t code);

// Takes an HRESULT: negative ones are failures.
inline void FailIfFailed(std::int32_t result, const char* text)
{
    if (result < 0)
        FailWithCode(text, result);
}

}  // namespace qov
