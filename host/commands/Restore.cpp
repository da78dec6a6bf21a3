#include "host/commands/Commands.h"
#include "host/commands/Ending.h"
#include "host/files/FileSession.h"
#include "host/review/ShownText.h"

#include <algorithm>

namespace host {

namespace {

ExitCode Restore(const RestoreOptions& options, const Console& console, Ending& ending)
{
    try {
        FileSession session(options.files, Purpose::Change);
        for (const std::string& notice : session.Notices())
            console.Step(notice);
        const std::vector<std::string> restored = session.Restore(options.backupSuffix);
        std::string summary;
        for (FileReport& file : ending.report.files) {
            file.changed = std::find(restored.begin(), restored.end(), file.path) != restored.end();
            const std::string path = Harmless(file.path);
            summary += file.changed ? "Put back: " + path + " (its copy " + path + Harmless(options.backupSuffix) +
                                          " is removed)\n"
                                    : "Left as it is, no copy of it: " + path + "\n";
        }
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
    return RunCommand(options, options.backupSuffix, false,
                      [&options](const ChosenMachine&, const Console& console, LogFile& logFile) {
                          Ending ending(options, console, logFile);
                          return Restore(options, console, ending);
                      });
}

}  // namespace host
