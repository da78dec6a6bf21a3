// What files hold. What the system refuses is thrown as platform::SystemFailure.
#pragma once

#include <string>

namespace host {

[[nodiscard]] std::string Read(const std::string& path);

// Whether the file's bytes are these.
[[nodiscard]] bool Holds(const std::string& path, const std::string& bytes);

}  // namespace host
