// The names of what a run works with beside a file, and what becomes of them when it was killed.
#pragma once

#include <string>
#include <vector>

namespace host {

// Beside the real file: its new bytes until they take its place, and a whole copy of it while it is rewritten in place.
std::string NewName(const std::string& real);
std::string OldName(const std::string& real);
// Beside the path as given: a backup that is not whole yet.
std::string UnfinishedBackupName(const std::string& given);

bool IsReservedName(const std::string& path);

// What there is of these names, one notice each.
std::vector<std::string> NamedLeftovers(const std::string& given, const std::string& real);

// Puts the copy back and removes the rest; gives a notice for each. The file must be locked. Throws FileProblem.
std::vector<std::string> Heal(const std::string& given, const std::string& real);

}  // namespace host
