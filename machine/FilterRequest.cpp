#include "machine/FilterRequest.h"

namespace machine {

std::string FilterRequestText(const void* request, std::size_t size, bool data, ULONG room)
{
    constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    for (const auto* byte = static_cast<const std::uint8_t*>(request); size-- > 0; ++byte)
        text += {Digits[*byte >> 4], Digits[*byte & 0xF]};
    return text + (data ? ", data " : ", no data ") + std::to_string(room);
}

}  // namespace machine
