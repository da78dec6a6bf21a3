#pragma once

#include "machine/JsonPlace.h"
#include "machine/TopologyDescription.h"

#include <nlohmann/json_fwd.hpp>

#include <utility>
#include <vector>

namespace machine {

// What connectors are connected to, and where that stands: it can be looked for once all topologies are read.
using Connections = std::vector<std::pair<JsonPlace, PartAddress>>;

TopologyDescription ReadTopology(const JsonPlace& place, Connections& connections);

nlohmann::ordered_json WriteTopology(const TopologyDescription& topology);

}  // namespace machine
