// A run told call by call: the log's lines, and the platform calls that came behind each.
#pragma once

#include "rehearsal/Rehearsal.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace host {

struct TraceStep {
    unsigned depth = 0;          // of the line; its calls stand one deeper
    rehearsal::LogMessage line;  // an empty text: before the first line
    std::vector<simulation::CallRecord> calls;
};

std::vector<TraceStep> ReadTrace(const rehearsal::Outcome& outcome);

// The steps in which calls failed, with those calls alone, and the lines that they are told within.
std::vector<TraceStep> FailedSteps(const std::vector<TraceStep>& steps);

// Text for people, harmless to show: indented by two blanks for each step, a failed call marked in front.
struct TraceLine {
    std::string text;
    bool failed = false;
};
std::vector<TraceLine> TraceLines(const std::vector<TraceStep>& steps);

nlohmann::ordered_json TraceJson(const std::vector<TraceStep>& steps);

}  // namespace host
