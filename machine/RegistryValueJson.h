#pragma once

#include "machine/JsonPlace.h"
#include "machine/MachineDescription.h"

#include <vector>

namespace machine {

// The values of one registry key, by name: a text (REG_SZ), a number (REG_DWORD), or an object that names the type and
// gives the data as text, number or bytes.
std::vector<RegistryValue> ReadRegistryValues(const JsonPlace& place);

}  // namespace machine
