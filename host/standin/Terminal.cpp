#include "host/Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace host {

void SetUpStreams()
{
    // A stream that was closed by whoever started the program would become the next file that is opened, and text for
    // it would go there. What takes its place cannot be written to.
    int descriptor = STDIN_FILENO;
    while (descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO)
        descriptor = ::open("/", O_RDONLY | O_DIRECTORY);
    if (descriptor > STDERR_FILENO)
        ::close(descriptor);
}

bool ShowsColours(Stream stream)
{
    const char* const terminal = std::getenv("TERM");
    return isatty(stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO) != 0 && terminal != nullptr &&
           std::string_view(terminal) != "dumb";
}

}  // namespace host
