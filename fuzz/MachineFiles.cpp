// Machine files: any bytes are read or refused, and what was read is written so that it reads back equal.
#include "fuzz/Fuzz.h"
#include "machine/MachineJson.h"

#include <optional>
#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::optional<machine::MachineDescription> machine;
    try {
        machine = machine::ParseMachine(text, "file");
    } catch (const std::runtime_error& refusal) {
        Require(std::string(refusal.what()).starts_with("file:"), "a refusal names the file");
        return 0;
    }
    const std::string written = machine::WriteMachine(*machine);
    const machine::MachineDescription again = machine::ParseMachine(written, "written");
    Require(again == *machine, "what is written reads back equal");
    Require(machine::WriteMachine(again) == written, "the same machine is written the same way");
    return 0;
}
