#pragma once

#include "machine/JsonPlace.h"
#include "machine/TopologyDescription.h"

#include <nlohmann/json_fwd.hpp>

namespace machine {

FilterDescription ReadFilter(const JsonPlace& place);

// A reply as the modules that it lists, if that gives the same bytes.
nlohmann::ordered_json WriteFilter(const FilterDescription& filter);

}  // namespace machine
