#pragma once

#include "host/review/Findings.h"
#include "rehearsal/Rehearsal.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Every warning's text; "{name}", "{path}", "{line}" and "{reason}" stand for what a case fills in.
std::span<const std::string_view> WarningTexts();

// What a user should know before the outcome is put in place: one line each, harmless to show.
std::vector<std::string> Warnings(const rehearsal::Outcome& outcome, const Findings& findings);

}  // namespace host
