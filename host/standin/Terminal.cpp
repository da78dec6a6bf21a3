#include "host/Terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace host {

void SetUpStreams() {}

bool ShowsColours(Stream stream)
{
    const char* const terminal = std::getenv("TERM");
    return isatty(stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO) != 0 && terminal != nullptr &&
           std::string_view(terminal) != "dumb";
}

}  // namespace host
