// What the fuzz targets share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Called by libFuzzer, or by Replay.cpp, with one input after the other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// A broken promise ends the process; libFuzzer then keeps the input.
inline void Require(bool holds, const std::string& promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", promise.c_str());
    std::abort();
}
