// What the program can do: one file each.
#pragma once

#include "host/CommandLine.h"

namespace host {

// Throws Interrupted, with nothing left behind.
ExitCode RunApply(const ApplyOptions& options);
ExitCode RunRestore(const RestoreOptions& options);
ExitCode RunTrace(const TraceOptions& options);
ExitCode RunList(const ListOptions& options);
ExitCode RunReport(const ReportOptions& options);
ExitCode RunSnapshot(const SnapshotOptions& options);

}  // namespace host
