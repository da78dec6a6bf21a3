#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace host {

struct XmlFault {
    std::size_t line = 0;  // from 1
    std::string reason;
};

// The first fault that keeps the bytes from being well-formed XML 1.0. They are read as single bytes, whatever encoding
// they declare, so that every encoding that holds ASCII does; each byte above it may stand wherever a letter may. What
// stands in a document type declaration is not looked at, and an entity that only it can declare passes.
std::optional<XmlFault> WellFormedFault(const std::string& bytes);

}  // namespace host
