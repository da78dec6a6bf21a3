// The JSON form of a machine description; machine.schema.json describes it for editors.
#pragma once

#include "machine/MachineDescription.h"

#include <string>

namespace machine {

// Throws std::runtime_error for a text that is malformed, with the file, line and column, and for a description that
// contradicts itself, with a line for each mistake: the file, the place in it (a JSON pointer) and the reason.
MachineDescription ReadMachine(const std::string& path);

// The same from a text; `source` stands for the file in failures.
MachineDescription ParseMachine(const std::string& text, const std::string& source);

// The text from which exactly this description is read again: always the same for the same description, without what
// holds by default, texts and modules readable where that keeps every byte. Throws std::runtime_error for what has no
// such text: a description that the reader would refuse, and a name or id with an unpaired surrogate.
std::string WriteMachine(const MachineDescription& machine);

}  // namespace machine
