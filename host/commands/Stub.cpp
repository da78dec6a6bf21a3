#include "host/commands/Commands.h"
namespace host {
ExitCode RunTrace(const TraceOptions&) { return RunFailed; }
ExitCode RunReport(const ReportOptions&) { return RunFailed; }
ExitCode RunSnapshot(const SnapshotOptions&) { return RunFailed; }
}  // namespace host
