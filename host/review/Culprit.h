// Which endpoint, value or part of the machine a run's failure or warnings come from.
#pragma once

#include "host/review/Endpoints.h"
#include "host/review/Findings.h"
#include "machine/MachineDescription.h"
#include "rehearsal/Rehearsal.h"

#include <string>
#include <vector>

namespace host {

struct Culprits {
    std::vector<std::string> lines;  // harmless to show; none where neither call nor value of the machine is to blame
    std::string command;             // of the program: what tells more of them
};
Culprits FindCulprits(const machine::MachineDescription& machine, const rehearsal::Outcome& outcome,
                      const Findings& findings);

// "Speakers", or the device id of an endpoint without a name; harmless to show.
std::string EndpointTitle(const EndpointView& endpoint);

}  // namespace host
