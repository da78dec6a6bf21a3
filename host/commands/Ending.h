// What commands have in common: how they begin, and how they end, told on every way at once.
#pragma once

#include "host/ChosenMachine.h"
#include "host/CommandLine.h"
#include "host/Console.h"
#include "host/LogFile.h"
#include "host/review/Report.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// Why the path must not be written over: what the command uses it for; empty when it may. The suffix of backups is
// empty when the command has nothing to do with them.
std::string_view UseOf(const std::string& path, const CommonOptions& options, const std::string& backupSuffix);

using CommandBody = std::function<ExitCode(const ChosenMachine&, const Console&, LogFile&)>;

// Sees to machine and log file, which may be wrong usage, and runs the body, during which interruptions are noted. The
// suffix of backups is empty when the command has nothing to do with them.
ExitCode RunCommand(const CommonOptions& options, const std::string& backupSuffix, MachineNeed need,
                    const CommandBody& body);

class Ending {
public:
    Ending(const CommonOptions& options, const Console& console, LogFile& logFile);

    // What is known so far; each way to end fills in the rest.
    Report report;

    // Failed, or refused: `problems` are one or several lines, already fit to be shown. What the report says to be at
    // fault is told behind them.
    ExitCode Failed(ExitCode code, const std::string& problems);
    // What was healed of a killed run.
    void TellNotices(const std::vector<std::string>& notices);
    // Every warning is told when it is added.
    void AddWarnings(const std::vector<std::string>& warnings);
    // Shows summary and diff; the report is whole. The exit code is `code`, unless standard output cannot be written.
    ExitCode With(ExitCode code, const std::string& summary);

private:
    void TellFault(const std::string& line);
    ExitCode Finish(ExitCode code);

    const Console& console_;
    LogFile& logFile_;
};

}  // namespace host
