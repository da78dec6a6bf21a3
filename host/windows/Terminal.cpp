#include "host/Terminal.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace host {

void SetUpStreams()
{
    // Text mode would turn the line feeds of a diff into CR LF.
    (void)_setmode(_fileno(stdout), _O_BINARY);
    (void)_setmode(_fileno(stderr), _O_BINARY);
    (void)SetConsoleOutputCP(CP_UTF8);
}

bool ShowsColours(Stream stream)
{
    const HANDLE handle = GetStdHandle(stream == Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != FALSE &&
           SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

}  // namespace host
