#pragma once

#include <string>

namespace host {

// The bytes' own difference, as `patch -p0 --binary` applies it to `path`: three lines of context, line N compared with
// line N as LineChanges does, carriage returns kept. Names that need it are quoted as GNU diff quotes them. Empty when
// the bytes are the same.
std::string UnifiedDiff(const std::string& path, const std::string& before, const std::string& after);

}  // namespace host
