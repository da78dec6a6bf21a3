// The whole library on a machine made of bytes: what must hold of every run (support/Trial.h) holds.
#include "fuzz/Fuzz.h"
#include "fuzz/MachineFromBytes.h"
#include "support/Trial.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Trials trials;
    const Trial trial = trials.Run(MachineFromBytes(data, size));
    Require(trial.broken.empty(), trial.broken);
    return 0;
}
