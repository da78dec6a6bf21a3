#pragma once

#include "machine/JsonPlace.h"
#include "machine/MachineDescription.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace machine {

// "REG_MULTI_SZ", or the number of a type that has no name.
std::string RegistryTypeName(DWORD type);

// The values of one registry key, by name: a text (REG_SZ), a number (REG_DWORD), or an object that names the type and
// gives the data as text, number or bytes.
std::vector<RegistryValue> ReadRegistryValues(const JsonPlace& place);

// Each value in the shortest of these forms from which its data can be read again byte for byte. Throws
// std::runtime_error for a name that is no UTF-16.
nlohmann::ordered_json WriteRegistryValues(const std::vector<RegistryValue>& values);

}  // namespace machine
