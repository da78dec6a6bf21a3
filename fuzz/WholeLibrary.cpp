// The whole library on a machine made of bytes: what must hold of every run (support/Trial.h) holds.
#include "fuzz/Fuzz.h"
#include "fuzz/MachineFromBytes.h"
#include "support/Trial.h"

#include <algorithm>
#include <string_view>

namespace {

// What runs on these machines come to: else what other bytes spoil in them would hardly be met.
constexpr struct {
    std::string_view bytes;
    const wchar_t* logged;
} Reached[] = {
    {"", L"+MFX"},
    {"", L"APO GUID: {272b1e6e-1e98-4476-b3f0-1a4654be1089}"},
    {"", L"Saving modified APO pipelines definition file..."},
    {"0 0 2", L"+MFX"},  // the endpoint records: the pin of a signal path
};

bool ReachedOn(const Trials& trials)
{
    for (const auto& row : Reached) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(row.bytes.data());
        const Trial trial = trials.Run(MachineFromBytes(bytes, row.bytes.size()));
        Require(trial.failure.empty(), "a run completes: " + trial.failure);
        Require(std::find(trial.log.begin(), trial.log.end(), row.logged) != trial.log.end(),
                "a run reaches the module lists and the last file");
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Trials trials;
    static const bool reached = ReachedOn(trials);
    const Trial trial = trials.Run(MachineFromBytes(data, size));
    Require(reached && trial.broken.empty(), trial.broken);
    return 0;
}
