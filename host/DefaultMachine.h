#pragma once

#include "MachineDescription.h"

#include <optional>

namespace host {

// The machine to simulate when the user names none, after saying so on standard error; none where the machine itself
// has Windows' audio.
std::optional<simulation::MachineDescription> DefaultMachine();

}  // namespace host
