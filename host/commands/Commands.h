// What the program can do: one file each.
#pragma once

#include "host/CommandLine.h"

namespace host {

// Throws Interrupted, with nothing left behind.
ExitCode RunApply(const ApplyOptions& options);
ExitCode RunRestore(const RestoreOptions& options);

}  // namespace host
