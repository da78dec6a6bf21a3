// Off Windows: what is used of the C runtime's functions for open files.
#pragma once

#include <stdio.h>
#include <sys/syscall.h>
#include <unistd.h>

inline int _fileno(FILE* stream) { return fileno(stream); }

// Not a place where a thread can be cancelled, which write() pays for at every call: Windows knows no such thing.
inline int _write(int file, const void* bytes, unsigned int count)
{
    return static_cast<int>(syscall(SYS_write, file, bytes, static_cast<size_t>(count)));
}
