#pragma once

#include <string>

namespace host {

// In UTC, as ISO 8601 has it.
std::string Now();

}  // namespace host
