#pragma once

#include "host/review/Findings.h"
#include "rehearsal/Rehearsal.h"

#include <optional>
#include <string>

namespace host {

// Why the outcome of a run that completed must not be put in place, with the path and what to do; one line, harmless to
// show: a file that was well-formed XML would not be any more, its copy was cut short, or a line changed that no edit
// of the run explains.
std::optional<std::string> OutcomeProblem(const rehearsal::Outcome& outcome, const Findings& findings);

// What a run that threw comes to: the message, before it the path of the file that was being edited, after it what to
// do. One line, harmless to show.
std::string FailureText(const rehearsal::Outcome& outcome, const Findings& findings);

}  // namespace host
