#pragma once

#include "machine/MachineDescription.h"

#include <optional>

namespace host {

// The machine to simulate when the user names none, after saying so on standard error; none where the machine itself
// has Windows' audio.
std::optional<machine::MachineDescription> DefaultMachine();

}  // namespace host
