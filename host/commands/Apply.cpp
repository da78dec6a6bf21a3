#include "host/commands/Commands.h"
#include "host/commands/Ending.h"
#include "host/commands/Look.h"
#include "host/files/FileSession.h"
#include "host/files/Interrupt.h"
#include "host/files/Messages.h"
#include "host/review/Culprit.h"
#include "host/review/Findings.h"
#include "host/review/OutcomeChecks.h"
#include "host/review/Report.h"
#include "host/review/ShownText.h"
#include "host/review/Warnings.h"
#include "rehearsal/Rehearsal.h"
#include "rehearsal/TemporaryFolder.h"
#include "simulation/UnusableMachine.h"
#include "snapshot/Snapshot.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

// A fault on an object that every call of it meets may stand for a call that was made when the snapshot was taken
// alone.
std::vector<std::string> UnusedFaults(const rehearsal::Outcome& outcome)
{
    std::vector<std::string> warnings;
    for (const machine::Fault& fault : outcome.unusedFaults)
        if (fault.occurrence || fault.object.empty())
            warnings.push_back("no call of the run met the machine file's fault of " + fault.call +
                               (fault.object.empty() ? "" : " of " + Harmless(fault.object)));
    return warnings;
}

bool IsChanged(const rehearsal::FileOutcome& file) { return file.before && file.after && *file.before != *file.after; }

std::vector<std::string> ChangedPaths(const rehearsal::Outcome& outcome)
{
    std::vector<std::string> paths;
    for (const rehearsal::FileOutcome& file : outcome.files)
        if (IsChanged(file))
            paths.push_back(file.path);
    return paths;
}

std::vector<FileChange> TakeChanges(rehearsal::Outcome outcome)
{
    std::vector<FileChange> changes;
    for (rehearsal::FileOutcome& file : outcome.files)
        if (IsChanged(file))
            changes.push_back({file.path, std::move(*file.before), std::move(*file.after)});
    return changes;
}

std::wstring LastMessage(const rehearsal::Outcome& outcome)
{
    const std::vector<rehearsal::LogMessage> log = rehearsal::Log(outcome);
    return log.empty() ? L"" : log.back().text;
}

// One `apply`, from the first look at the files to the end.
class Application {
public:
    Application(const ApplyOptions& options, const ChosenMachine& machine, const Console& console, LogFile& logFile)
        : options_(options), machine_(machine), console_(console), logFile_(logFile), ending_(options, console, logFile)
    {
        if (options.diff)
            ending_.report.diff.emplace();
    }

    ExitCode Run()
    {
        try {
            FileSession session(options_.files, options_.dryRun ? Purpose::Look : Purpose::Change);
            if (options_.dryRun)
                ending_.AddWarnings(session.Notices());
            else
                ending_.TellNotices(session.Notices());
            const std::vector<std::string> problems = session.Problems();
            if (!problems.empty())
                return ending_.Failed(FileProblemFound, messages::Joined(problems));
            console_.Step("The three files can be used.");
            return RehearseAndApply(session);
        } catch (const FileProblem& problem) {
            return ending_.Failed(FileProblemFound, problem.what());
        } catch (const simulation::UnusableMachine& unusable) {
            if (!machine_.isSnapshot)
                return TellUnusable(machine_, unusable, console_);
            ending_.report.atFault = FailedFunctions(*machine_.description);
            ending_.report.moreBy = "qovxml-configure snapshot";
            return ending_.Failed(RunFailed, UnusableSnapshot(unusable));
        } catch (const rehearsal::NoCopies& failure) {
            return ending_.Failed(RunFailed, Harmless(failure.what()) +
                                                 ". What to do: Make room in the folder for temporary files, or name "
                                                 "another one (TMPDIR, on Windows TMP).");
        } catch (const std::exception& failure) {
            return ending_.Failed(RunFailed, Harmless(failure.what()));
        }
    }

private:
    ExitCode RehearseAndApply(FileSession& session)
    {
        console_.Step("Rehearsing the run on copies (machine: " + Harmless(machine_.name) + ")...");
        rehearsal::Outcome outcome = machine_.description ? rehearsal::Rehearse(*machine_.description, options_.files)
                                                          : rehearsal::Rehearse(options_.files);
        ThrowIfInterrupted();
        ending_.report.log = rehearsal::Log(outcome);
        console_.WholeLog(ending_.report.log);
        logFile_.Write(ending_.report.log);

        const Findings findings = ReadFindings(outcome);
        if (outcome.failure) {
            const bool pipelinesMissing =
                findings.fileUnderEdit == PipelinesFile && !outcome.files[PipelinesFile].before;
            if (!findings.fileUnderEdit)
                TakeCulprits(outcome, findings);
            return ending_.Failed(pipelinesMissing ? FileProblemFound : RunFailed, FailureText(outcome, findings));
        }
        if (const auto problem = OutcomeProblem(outcome, findings))
            return ending_.Failed(RunFailed, *problem);
        return Put(session, std::move(outcome), findings);
    }

    ExitCode Put(FileSession& session, rehearsal::Outcome outcome, const Findings& findings)
    {
        const std::vector<std::string> changed = ChangedPaths(outcome);
        ending_.report.files = FileReports(outcome);
        for (FileReport& file : ending_.report.files)
            file.changed = file.changed && options_.dryRun;  // else not yet
        if (options_.diff)
            ending_.report.diff = Diff(outcome);
        ending_.AddWarnings(Warnings(outcome, findings));
        if (!machine_.isSnapshot)
            ending_.AddWarnings(UnusedFaults(outcome));
        TakeCulprits(outcome, findings);
        if (options_.dryRun)
            ending_.AddWarnings(session.Hindrances(options_.backupSuffix, changed));
        if (options_.strict && !ending_.report.warnings.empty())
            return EndUnchanged(StoppedByWarnings, "warnings", findings);
        if (changed.empty())
            return EndUnchanged(Done, "unchanged", findings);
        if (options_.dryRun)
            return EndUnchanged(options_.exitCode ? WouldChange : Done, "would-change", findings);

        const std::vector<std::string> backups =
            session.PutInPlace(TakeChanges(std::move(outcome)), options_.backupSuffix);
        for (FileReport& file : ending_.report.files) {
            file.changed = std::find(changed.begin(), changed.end(), file.path) != changed.end();
            const std::string backup = file.path + options_.backupSuffix.value_or("");
            if (file.changed && std::find(backups.begin(), backups.end(), backup) != backups.end())
                file.backup = backup;
        }
        for (const std::string& path : changed)
            console_.Step("Put in place: " + Harmless(path));
        ending_.report.outcome = "done";
        return ending_.With(Done, Summary(ending_.report, findings));
    }

    // Only a described machine tells its calls: where none is, the run is made again on a snapshot.
    void TakeCulprits(const rehearsal::Outcome& outcome, const Findings& findings)
    {
        if (machine_.description)
            TakeCulprits(*machine_.description, outcome, findings);
        else if (outcome.failure || !ending_.report.warnings.empty())
            TakeCulpritsOfThisMachine(outcome);
    }

    void TakeCulpritsOfThisMachine(const rehearsal::Outcome& outcome)
    {
        try {
            const machine::MachineDescription machine = snapshot::TakeSnapshot();
            const rehearsal::Outcome again = rehearsal::Rehearse(machine, options_.files);
            // It must have come as far, not only ended with the same message.
            if (again.failure == outcome.failure && LastMessage(again) == LastMessage(outcome))
                TakeCulprits(machine, again, ReadFindings(again));
        } catch (const std::exception&) {
            // The run's own message stands without them.
        }
    }

    void TakeCulprits(const machine::MachineDescription& machine, const rehearsal::Outcome& outcome,
                      const Findings& findings)
    {
        Culprits culprits = FindCulprits(machine, outcome, findings);
        ending_.report.atFault = std::move(culprits.lines);
        ending_.report.moreBy = "qovxml-configure " + culprits.command;
        if (options_.exampleMachine)
            ending_.report.moreBy += " --example-machine";
        else if (!options_.machineFile.empty())
            ending_.report.moreBy += " --machine " + Argument(options_.machineFile);
    }

    ExitCode EndUnchanged(ExitCode code, const std::string& outcome, const Findings& findings)
    {
        ending_.report.outcome = outcome;
        return ending_.With(code, Summary(ending_.report, findings));
    }

    const ApplyOptions& options_;
    const ChosenMachine& machine_;
    const Console& console_;
    LogFile& logFile_;
    Ending ending_;
};

}  // namespace

ExitCode RunApply(const ApplyOptions& options)
{
    return RunCommand(options, options.backupSuffix.value_or(""),
                      options.dryRun ? MachineNeed::Description : MachineNeed::Own,
                      [&options](const ChosenMachine& machine, const Console& console, LogFile& logFile) {
                          return Application(options, machine, console, logFile).Run();
                      });
}

}  // namespace host
