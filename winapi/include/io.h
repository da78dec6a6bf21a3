// Off Windows: what is used of the C runtime's functions for open files.
#pragma once

#include <stdio.h>
#include <unistd.h>

inline int _fileno(FILE* stream) { return fileno(stream); }

inline int _write(int file, const void* bytes, unsigned int count)
{
    return static_cast<int>(write(file, bytes, count));
}
