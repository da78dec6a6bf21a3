// What the files' operations ask of the platform; a file of each kind (standin/, windows/) exists. Paths are narrow, as
// the C runtime takes them; links are followed where nothing else is said. What the system refuses is thrown as
// SystemFailure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host::platform {

struct SystemFailure : std::runtime_error {  // the system's own message
    using runtime_error::runtime_error;
};

// The same for every path and name of one file.
struct Identity {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    bool operator==(const Identity&) const = default;
};

enum class Kind { Missing, Regular, Link, Other };  // Link: only where links are not followed

struct Facts {
    Kind kind = Kind::Missing;
    Identity identity;
    std::uint64_t names = 0;  // hard links
};

[[nodiscard]] Facts Look(const std::string& path);
[[nodiscard]] Kind KindOfName(const std::string& path);  // links are not followed
// The path of the file that links lead to.
[[nodiscard]] std::string RealPath(const std::string& path);
// Hands over all bytes of the file in parts of some size, in order, until `take` gives false.
void ReadParts(const std::string& path, const std::function<bool(std::string_view part)>& take);
// Throws when a file at a real path cannot be opened for writing; changes nothing.
void CheckWritable(const std::string& path);
// Throws when no file can be made beside the one at this path; changes nothing.
void CheckFolderWritable(const std::string& path);
// Whether a file of that name was made by somebody who could have written the other file anyway.
[[nodiscard]] bool Trusted(const std::string& path, const std::string& file);
// Gives a regular file new bytes under the same name, flushed.
void Rewrite(const std::string& path, const std::string& bytes);
// Removes a name; it may be missing.
void Remove(const std::string& path);
// Flushes which names there are in the folder of the file.
void FlushFolder(const std::string& path);

}  // namespace host::platform
