// What a command came to, as people and programs are told.
#pragma once

#include "host/review/Findings.h"
#include "host/review/LineChanges.h"
#include "rehearsal/Rehearsal.h"

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace host {

struct FileReport {
    std::string path;
    bool changed = false;  // by this run; in a dry run: would be
    std::optional<std::string> backup;
    std::vector<LineChange> lines;
};

struct Report {
    std::string outcome;                 // "done", "unchanged", "would-change", "failed", "file-problem", "warnings"
    std::optional<std::string> message;  // why it failed
    std::vector<std::string> warnings;
    std::vector<FileReport> files;  // in the order of Outcome::files
    std::vector<rehearsal::LogMessage> log;
    std::optional<std::string> diff;     // with --diff
    std::vector<std::string> atFault{};  // endpoints, values and parts of the machine
    std::string moreBy{};                // the command that tells more of them
};

// Of a completed run: what it makes of each file.
std::vector<FileReport> FileReports(const rehearsal::Outcome& outcome);

// The differences of all three files.
std::string Diff(const rehearsal::Outcome& outcome);

// The closing summary: UTF-8, several lines, each ended by a line feed, harmless to show. No line of it is taken for a
// part of a diff that stands before or behind it.
std::string Summary(const Report& report, const Findings& findings);

// The object that --json prints; every text in it is UTF-8.
nlohmann::ordered_json OutcomeJson(const Report& report);

}  // namespace host
