// JSON texts and the documents that they hold. The members of an object keep their order.
#pragma once

#include "machine/JsonPlace.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace machine {

// Notes each member that stands twice in its object; the last one counts. Throws std::runtime_error with the source,
// the line and the column for a text that is not JSON.
nlohmann::ordered_json ParseJson(const std::string& text, JsonMistakes& mistakes);

// Indented by two blanks; an object or list that fits on a line of 110 characters stands on one. Ends with a line feed.
std::string FormatJson(const nlohmann::ordered_json& document);

}  // namespace machine
