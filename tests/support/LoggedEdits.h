// What a run promised to make of the files of tests/scenarios/files/, by what it logged.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The file afterwards, byte for byte: 0 the configuration, 1 the settings, 2 the pipelines definition. `bytes` is the
// file before, with line ends of CR LF. Empty: the log does not say what became of it.
std::string LoggedEdits(std::string bytes, std::size_t file, const std::vector<std::wstring>& log);

void Replace(std::string& text, const std::string& from, const std::string& to);
