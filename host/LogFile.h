#pragma once

#include "rehearsal/Rehearsal.h"

#include <fstream>
#include <string>
#include <vector>

namespace host {

// The file of --log-file: a head (program and version, system, machine, time), then the library's whole log and what
// came of the command, UTF-8.
class LogFile {
public:
    // Empties the file, or makes it; an empty path: there is none.
    LogFile(const std::string& path, const std::string& machineName);

    void Write(const std::vector<rehearsal::LogMessage>& log);
    void Write(const std::string& line);

    // False when the file cannot be opened, or did not take all that was written to it.
    [[nodiscard]] bool Written();

private:
    bool wanted_;
    std::ofstream file_;
};

}  // namespace host
