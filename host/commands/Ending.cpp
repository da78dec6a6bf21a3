#include "host/commands/Ending.h"

#include "host/files/Interrupt.h"
#include "host/files/Leftovers.h"
#include "host/review/ShownText.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string_view>
#include <system_error>

namespace host {

namespace {

// What --quiet leaves of a summary.
struct OutcomeText {
    std::string_view outcome;
    std::string_view text;
};
constexpr OutcomeText OutcomeTexts[] = {
    {"done", "Done."},
    {"unchanged", "Nothing to change."},
    {"would-change", "Would change."},
    {"warnings", "Stopped by warnings: nothing was changed."},
};

// By path, link or hard link; that there is no such file yet makes no difference.
bool IsSameFile(const std::string& path, const std::string& other)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (path == other || fs::equivalent(path, other, error))
        return true;
    const fs::path whole = fs::weakly_canonical(fs::absolute(path), error);
    return !error && whole == fs::weakly_canonical(fs::absolute(other), error) && !error;
}

}  // namespace

std::string_view UseOf(const std::string& path, const CommonOptions& options, const std::string& backupSuffix)
{
    if (IsReservedName(path))
        return "has a name that is kept for temporary files";
    if (!options.machineFile.empty() && IsSameFile(path, options.machineFile))
        return "is the machine file";
    for (const std::string& file :
         {options.files.ConfigurationFile, options.files.SettingsFile, options.files.ApoPipelinesDefinitionFile}) {
        if (file.empty())
            continue;
        if (IsSameFile(path, file))
            return "is one of the three files";
        if (!backupSuffix.empty() && IsSameFile(path, file + backupSuffix))
            return "is the backup of one of the three files";
    }
    return {};
}

ExitCode RunCommand(const CommonOptions& options, const std::string& backupSuffix, MachineNeed need,
                    const CommandBody& body)
{
    if (!options.logFile.empty())
        if (const std::string_view use = UseOf(options.logFile, options, backupSuffix); !use.empty())
            return TellWrongUsage("--log-file: " + Harmless(options.logFile) + " " + std::string(use));
    ChosenMachine machine;
    try {
        machine = ChooseMachine(options, need);
    } catch (const std::exception& failure) {
        return TellWrongUsage(HarmlessLines(failure.what()));
    }
    const Console console(options);
    const InterruptGuard guard;
    LogFile logFile(options.logFile, machine.name);
    if (!logFile.Written()) {
        Ending ending(options, console, logFile);
        return ending.Failed(FileProblemFound, Harmless(options.logFile) +
                                                   ": the log file cannot be written: name one in a folder that you "
                                                   "may write to");
    }
    return body(machine, console, logFile);
}

Ending::Ending(const CommonOptions& options, const Console& console, LogFile& logFile)
    : console_(console), logFile_(logFile)
{
    for (const std::string& path :
         {options.files.ConfigurationFile, options.files.SettingsFile, options.files.ApoPipelinesDefinitionFile})
        report.files.push_back({path, false, std::nullopt, {}});
}

ExitCode Ending::Failed(ExitCode code, const std::string& problems)
{
    report.outcome = code == FileProblemFound ? "file-problem" : "failed";
    report.message = problems;
    console_.Error(problems);
    logFile_.Write(problems);
    for (const std::string& fault : report.atFault)
        TellFault("At fault: " + fault);
    if (!report.atFault.empty())
        TellFault("More is told by: " + report.moreBy);
    return Finish(code);
}

void Ending::TellFault(const std::string& line)
{
    console_.Error(line);
    logFile_.Write(line);
}

void Ending::TellNotices(const std::vector<std::string>& notices)
{
    for (const std::string& notice : notices) {
        console_.Notice(notice);
        logFile_.Write(notice);
    }
}

void Ending::AddWarnings(const std::vector<std::string>& warnings)
{
    for (const std::string& warning : warnings) {
        console_.Warning(warning);
        logFile_.Write("warning: " + warning);
        report.warnings.push_back(warning);
    }
}

ExitCode Ending::With(ExitCode code, const std::string& summary)
{
    logFile_.Write("");
    logFile_.Write(summary);
    console_.Summary(summary);
    for (const OutcomeText& row : OutcomeTexts)
        if (row.outcome == report.outcome)
            console_.Outcome(row.text);
    if (report.diff)
        console_.Diff(*report.diff);
    return Finish(code);
}

ExitCode Ending::Finish(ExitCode code)
{
    console_.Json(OutcomeJson(report).dump(2));
    if (!logFile_.Written()) {
        console_.Error("The log file could not be written to its end: look whether the disk is full");
        code = code == Done ? RunFailed : code;
    }
    if (!console_.OutputWritten()) {
        console_.Error("Standard output could not be written to its end");
        return code == Done || code == WouldChange ? RunFailed : code;
    }
    return code;
}

}  // namespace host
