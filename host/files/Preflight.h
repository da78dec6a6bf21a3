// What can be said of the given files before anything is run on them.
#pragma once

#include "host/files/Platform.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace host {

struct GivenFile {
    std::string path;  // as given
    std::string real;  // where links lead; empty unless it is a regular file
    platform::Facts facts;
    std::optional<std::string> problem;  // it cannot be found or is no regular file; that it is missing is none here

    [[nodiscard]] bool IsThere() const { return facts.kind != platform::Kind::Missing; }
    [[nodiscard]] bool IsUsable() const { return IsThere() && !problem; }
};

using GivenFiles = std::array<GivenFile, 3>;

GivenFile Examine(const std::string& path);

// Each adds a line for every problem.
void AddMissing(const GivenFile& file, std::vector<std::string>& problems);
void AddGivenTwice(const GivenFiles& files, std::vector<std::string>& problems);
void AddUnusableContent(const GivenFile& file, std::vector<std::string>& problems);
void AddUnwritable(const GivenFile& file, std::vector<std::string>& problems);
// The file's folder and, if there is a suffix, its backup.
void AddUnwritableBeside(const GivenFile& file, const std::optional<std::string>& backupSuffix,
                         std::vector<std::string>& problems);

}  // namespace host
