// The whole runs of tests/scenarios/: CONTRIBUTING.md says how they are written; here each is worked out in full.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// In the order of the run.
inline constexpr std::array<const char*, 3> ScenarioFiles = {"configuration", "settings", "pipelines"};
using FileBytes = std::array<std::optional<std::string>, 3>;  // none: there is no such file

struct ScenarioCase {
    std::string suite;  // what it needs to run on, "/" and the name of the file that holds it
    std::string name;
    std::string about;
    std::string machine;  // its JSON description
    std::string failure;  // "(nothing thrown)" for a run that completes
    FileBytes before;
    FileBytes after;
    std::vector<std::string> log;    // with gaps; a warning begins with "[warning] "
    std::vector<std::string> calls;  // with gaps: name, object and arguments
};

// Throws std::runtime_error with the file and the case when one cannot be understood.
std::vector<ScenarioCase> ReadScenarioCases(const std::filesystem::path& folder);
