#pragma once

#include "machine/MachineDescription.h"
#include "snapshot/Answers.h"

#include <optional>
#include <string>
#include <vector>

namespace snapshot {

// The names of the endpoint keys of a flow, in the registry's order; none in the place of one that is not to be known.
std::vector<std::optional<std::wstring>> ReadEndpointKeys(EDataFlow flow, Answers& answers);

// The values of an endpoint's key `Properties` or `FxProperties`, by name; none where it cannot be opened. One that
// cannot be read stands there without data.
std::optional<std::vector<machine::RegistryValue>> ReadValues(const machine::Endpoint& endpoint,
                                                              const std::wstring& name, Answers& answers);

// Whether a run reads the values of this name.
bool IsAskedByARun(const std::wstring& valueName);

}  // namespace snapshot
