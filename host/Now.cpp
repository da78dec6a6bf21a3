#include "host/Now.h"

#include <ctime>

namespace host {

std::string Now()
{
    const std::time_t now = std::time(nullptr);
    char text[32] = {};
    if (const std::tm* const utc = std::gmtime(&now))
        (void)std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%SZ", utc);
    return text;
}

}  // namespace host
