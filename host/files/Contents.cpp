#include "host/files/Contents.h"

#include "host/files/Platform.h"

#include <string_view>

namespace host {

std::string Read(const std::string& path)
{
    std::string bytes;
    platform::ReadParts(path, [&bytes](std::string_view part) {
        bytes += part;
        return true;
    });
    return bytes;
}

bool Holds(const std::string& path, const std::string& bytes)
{
    std::string_view rest = bytes;
    bool same = true;
    platform::ReadParts(path, [&](std::string_view part) {
        same = rest.starts_with(part);
        rest.remove_prefix(same ? part.size() : 0);
        return same;
    });
    return same && rest.empty();
}

}  // namespace host
