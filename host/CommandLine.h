// What a user may write behind the program's name.
#pragma once

#include "QovXml.h"

#include <optional>
#include <string>
#include <variant>

namespace host {

enum ExitCode : int {
    Done = 0,  // also: nothing to change
    RunFailed = 1,
    WrongUsage = 2,
    FileProblemFound = 3,
    WouldChange = 4,        // a dry run with --exit-code
    StoppedByWarnings = 5,  // --strict
};

struct CommonOptions {
    QovXml::Config files;
    std::string machineFile;      // empty: none is named
    bool exampleMachine = false;  // the built-in one
    std::string logFile;          // empty: none
    bool quiet = false;
    bool verbose = false;
    bool json = false;
    bool noColor = false;
};

struct ApplyOptions : CommonOptions {
    bool dryRun = false;
    bool diff = false;
    bool exitCode = false;
    bool strict = false;
    std::optional<std::string> backupSuffix;  // none: no backups
};

struct RestoreOptions : CommonOptions {
    std::string backupSuffix;
};

// The commands that only look.
struct TraceOptions : CommonOptions {
    bool failedOnly = false;
};

struct ListOptions : CommonOptions {};

struct ReportOptions : CommonOptions {
    std::string output;
};

struct SnapshotOptions : CommonOptions {
    std::string output;  // empty: standard output
    bool redact = false;
};

using Command =
    std::variant<ApplyOptions, RestoreOptions, TraceOptions, ListOptions, ReportOptions, SnapshotOptions, ExitCode>;

// A command to carry out, or the exit code of a call that is answered already: help or version on standard output,
// wrong usage on standard error.
Command ReadCommandLine(int argc, char** argv);

// Tells wrong usage that shows only when an option is looked at, in the form of the others.
ExitCode TellWrongUsage(const std::string& reason);

}  // namespace host
