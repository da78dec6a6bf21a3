#pragma once

#include "host/CommandLine.h"
#include "machine/MachineDescription.h"

#include <optional>
#include <string>

namespace host {

// The machine that a command works on.
struct ChosenMachine {
    std::optional<machine::MachineDescription> description;  // none: the one that the program runs on
    std::string name;                                        // for people
    bool isSnapshot = false;                                 // the description is one of that machine, just taken
};

enum class MachineNeed {
    None,
    Own,          // the one that the program runs on will do
    Description,  // where none is named, that one is described
};

// Throws std::runtime_error: a machine file that cannot be used (its message names file and place), or no machine named
// where one is needed and the program's own has no Windows audio.
ChosenMachine ChooseMachine(const CommonOptions& options, MachineNeed need);

}  // namespace host
