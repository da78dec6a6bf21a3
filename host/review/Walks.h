// The ways of the firmware walk, one for each endpoint, read from the events of a run on a described machine: nobody
// walks a second time.
#pragma once

#include "rehearsal/Rehearsal.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace host {

struct PassedPart {
    std::string globalId;
    bool connector = false;  // at which the walk of these parts ended
    bool switched = false;   // its selector was
};

// One stretch of the way: from a connector into the filter (or other device) on its other side.
struct Stretch {
    std::string connector;          // on which the walk stood, by its global id; empty: it did not get to know it
    std::string entry;              // the connector on the other side; empty: it was not reached
    std::vector<PassedPart> parts;  // in the order in which they were come to, dead ends included
};

struct AskedPin {
    std::string id;                    // decimal
    std::optional<std::size_t> count;  // of modules, as the driver tells it; none: it did not come to that
    std::string why;                   // it gave no modules, in words; empty: it did
};

struct Walk {
    std::string deviceId;  // of the endpoint, as the log has it
    std::vector<Stretch> way;
    std::string softwareConnector;  // that it reached, by its global id; empty: none
    std::vector<AskedPin> pins;
    std::string why;       // the endpoint gave no firmware modules, in words; empty: it did
    bool toBlame = false;  // a failed call is: `why` names it
    bool damaged = false;  // a list of modules is
};

// Ids are UTF-8 and may hold anything; `why` is one line, harmless to show.
std::vector<Walk> ReadWalks(const rehearsal::Outcome& outcome);

}  // namespace host
