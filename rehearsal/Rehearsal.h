// A run of the library on copies of the three files: what it would come to, before anybody's file is touched.
#pragma once

#include "ILogger.h"
#include "QovXml.h"
#include "machine/MachineDescription.h"
#include "simulation/CallMonitor.h"

#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace rehearsal {

struct LogMessage {
    LogLevel level = LogLevel::Info;
    std::wstring text;  // UTF-16
};

// What happened, in order: a message of the library, or a platform call that it made.
using Event = std::variant<LogMessage, simulation::CallRecord>;

struct FileOutcome {
    std::string path;  // as given
    // All bytes; none: there is no such file, or it cannot be read.
    std::optional<std::string> before;
    std::optional<std::string> after;
};

struct Outcome {
    std::optional<std::string> failure;        // the message of what the run threw; none: it completed
    std::vector<Event> events;                 // platform calls on a described machine only
    std::array<FileOutcome, 3> files;          // configuration, settings, pipelines definition
    std::vector<machine::Fault> unusedFaults;  // faults of the described machine that no call met
};

// Runs QovXml::ConfigureQovXmls on copies of the files (three different ones) in a private temporary folder, on the
// described machine or on the one that this process runs on, whose selectors are then switched for good. The originals
// are opened for reading only; messages name the original paths. Nothing is left behind, however it ends.
//
// Throws NoCopies when the copies cannot be made, and what SimulatedMachine throws.
Outcome Rehearse(const machine::MachineDescription& machine, const QovXml::Config& files);
Outcome Rehearse(const QovXml::Config& files);

// The same of files that need not exist.
struct NamedContents {
    std::string path;  // different ones
    std::optional<std::string> bytes;
};
Outcome RehearseContents(const machine::MachineDescription& machine, std::array<NamedContents, 3> files);

// The messages alone.
std::vector<LogMessage> Log(const Outcome& outcome);

}  // namespace rehearsal
