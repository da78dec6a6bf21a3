#include "host/commands/Commands.h"
namespace host {
ExitCode RunReport(const ReportOptions&) { return RunFailed; }
ExitCode RunSnapshot(const SnapshotOptions&) { return RunFailed; }
}  // namespace host
