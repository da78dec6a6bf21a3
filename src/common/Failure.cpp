#include "common/Failure.h"

#include "common/Text.h"

#include <stdexcept>

namespace qov {

void Fail(const std::string& message) { throw std::runtime_error(message); }

void FailWithCode(const std::string& text, std::int32_t code)
{
    Fail(text + HexText(static_cast<std::uint32_t>(code)));
}

}  // namespace qov
