// What a run found on each endpoint of a described machine.
#pragma once

#include "host/review/Findings.h"
#include "host/review/Walks.h"
#include "machine/MachineDescription.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <vector>

namespace host {

// Texts are UTF-8 and as the machine gives them, but for `why`, which is harmless to show.
struct EndpointView {
    std::string flow;   // "render" or "capture"
    std::string state;  // "active", "disabled", "not present" or "unplugged"
    std::string name;
    std::string guid;  // in lower case
    std::string deviceId;
    bool effectsKnown = false;         // the run came to them and told them; it looks at active endpoints alone
    std::vector<FoundModule> effects;  // in the slots, by slot
    std::vector<FoundModule> wrapped;
    bool firmwareKnown = false;         // likewise, those that are not active included
    std::vector<FoundModule> firmware;  // by pin
    std::optional<Walk> walk;           // none: the run did not come to it
    std::string why;                    // no firmware modules; empty: there are some
};

// In the order of the description.
std::vector<EndpointView> ReadEndpoints(const machine::MachineDescription& machine, const rehearsal::Outcome& outcome,
                                        const Findings& findings);

// One row per endpoint, an entry below the other where a column holds several: UTF-8, harmless to show.
std::string EndpointTable(const std::vector<EndpointView>& endpoints);

nlohmann::ordered_json EndpointsJson(const std::vector<EndpointView>& endpoints);

// The name that people know a module by: the maker's name for it, or its GUID.
std::string ModuleName(const FoundModule& module);

}  // namespace host
