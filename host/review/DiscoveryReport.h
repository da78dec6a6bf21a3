// The list of all modules that a run writes into its log.
#pragma once

#include "host/review/Findings.h"

#include <string>
#include <vector>

namespace host {

bool IsDiscoveryReport(const std::wstring& message);

// Its modules, without friendly names. Values may hold line feeds; where the report is none, the list ends.
std::vector<FoundModule> ReadDiscoveryReport(const std::wstring& message);

// ASCII letters alone.
std::string LowerCase(std::string text);

}  // namespace host
