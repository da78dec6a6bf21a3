#include "host/commands/Commands.h"
#include "host/commands/Ending.h"
#include "host/files/FileSession.h"
#include "host/files/Messages.h"
#include "host/review/ShownText.h"

#include <algorithm>

namespace host {

namespace {

// Takes into the report what was put back; gives the summary.
std::string TakeIn(const Restored& restored, const std::string& backupSuffix, std::vector<FileReport>& files)
{
    std::string summary;
    for (FileReport& file : files) {
        const std::string path = Harmless(file.path);
        const auto found = std::find_if(restored.files.begin(), restored.files.end(),
                                        [&](const FileChange& change) { return change.path == file.path; });
        if (found == restored.files.end()) {
            summary += "Left as it is, no copy of it: " + path + "\n";
            continue;
        }
        file.changed = found->before != found->after;
        file.lines = LineChanges(found->before, found->after);
        summary += "Put back: " + path + " (its copy " + path + Harmless(backupSuffix) + " is removed)\n";
    }
    return summary;
}

ExitCode Restore(const RestoreOptions& options, Ending& ending)
{
    try {
        FileSession session(options.files, Purpose::Change);
        ending.TellNotices(session.Notices());
        const Restored restored = session.Restore(options.backupSuffix);
        const std::string summary = TakeIn(restored, options.backupSuffix, ending.report.files);
        if (!restored.notRemoved.empty())
            return ending.Failed(FileProblemFound, messages::Joined(restored.notRemoved));
        ending.report.outcome = "done";
        return ending.With(Done, summary);
    } catch (const FileProblem& problem) {
        return ending.Failed(FileProblemFound, problem.what());
    } catch (const std::exception& failure) {
        return ending.Failed(RunFailed, Harmless(failure.what()));
    }
}

}  // namespace

ExitCode RunRestore(const RestoreOptions& options)
{
    return RunCommand(options, options.backupSuffix, MachineNeed::None,
                      [&options](const ChosenMachine&, const Console& console, LogFile& logFile) {
                          Ending ending(options, console, logFile);
                          return Restore(options, ending);
                      });
}

}  // namespace host
