// What the commands that only look have in common: a run of the library on a description, of which nothing is kept.
#pragma once

#include "host/ChosenMachine.h"
#include "host/CommandLine.h"
#include "host/Console.h"
#include "host/review/Endpoints.h"
#include "host/review/Findings.h"
#include "machine/MachineDescription.h"
#include "rehearsal/Rehearsal.h"
#include "simulation/UnusableMachine.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Look {
    std::string machineName;  // for people
    machine::MachineDescription machine;
    rehearsal::Outcome outcome;  // on the example files when none are named
    Findings findings;
    std::vector<EndpointView> endpoints;
};

// A machine that cannot be simulated is wrong usage, but not one of which a snapshot was taken: Windows' own functions
// failed on it, and cannot be made to.
ExitCode TellUnusable(const ChosenMachine& machine, const simulation::UnusableMachine& unusable,
                      const Console& console);
std::string UnusableSnapshot(const simulation::UnusableMachine& unusable);

// The calls of Windows' own functions that failed when the snapshot was taken: one line each, harmless to show.
std::vector<std::string> FailedFunctions(const machine::MachineDescription& machine);

// Whether the three files are named.
bool NamesFiles(const CommonOptions& options);

ExitCode RunLook(const CommonOptions& options, const std::function<ExitCode(const Look&, const Console&)>& body);

// Tells wrong usage when the result would be written over what the command reads, or over a file that does not begin as
// such results do; else Done.
ExitCode RefusedOutput(const CommonOptions& options, const std::string& path, std::string_view beginning);

// Writes a result to the file, or to standard output when the path is empty; tells when it cannot.
ExitCode WriteResult(const std::string& path, const std::string& text, const Console& console);

// Prints a result; `code` unless that fails.
ExitCode Printed(const Console& console, ExitCode code);

}  // namespace host
