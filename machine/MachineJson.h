// The JSON form of a machine description; machine.schema.json describes it for editors.
#pragma once

#include "machine/MachineDescription.h"

#include <string>

namespace machine {

// Throws std::runtime_error with the file, the place in it (a JSON pointer, or line and column) and the reason, for a
// text that is malformed and for a description that contradicts itself.
MachineDescription ReadMachine(const std::string& path);

// The same from a text; `source` stands for the file in failures.
MachineDescription ParseMachine(const std::string& text, const std::string& source);

}  // namespace machine
