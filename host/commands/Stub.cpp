#include "host/commands/Commands.h"
namespace host {
ExitCode RunSnapshot(const SnapshotOptions&) { return RunFailed; }
}  // namespace host
