// One page that tells a run, for the maker's support: it needs nothing else, neither network nor script.
#pragma once

#include "host/review/Endpoints.h"
#include "host/review/Findings.h"
#include "machine/MachineDescription.h"
#include "rehearsal/Rehearsal.h"

#include <string>
#include <vector>

namespace host {

struct PageFacts {
    std::string program;  // with its version
    std::string system;
    std::string machine;  // for people
    std::string time;
    bool preview = false;  // the files are the user's, so what becomes of them is shown
};

// HTML in UTF-8, with the description inside as a file to be saved. Whatever comes from machine or files is escaped.
std::string ReportPage(const PageFacts& facts, const machine::MachineDescription& machine,
                       const rehearsal::Outcome& outcome, const Findings& findings,
                       const std::vector<EndpointView>& endpoints);

// The part of the page that tells of one endpoint: the way of its walk as a chain of boxes, effects and modules.
std::string EndpointArticle(const EndpointView& endpoint);

}  // namespace host
