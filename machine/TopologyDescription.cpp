#include "machine/TopologyDescription.h"

#include "machine/Utf16.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace machine {

namespace {

constexpr std::size_t EntrySize = 148;

void AppendNumber(Bytes& bytes, std::size_t number)
{
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>((number >> shift) & 0xFF));
}

}  // namespace

std::string LocalIdText(UINT localId)
{
    char text[9];
    std::snprintf(text, sizeof(text), "%08x", static_cast<unsigned int>(localId));
    return text;
}

std::wstring GlobalId(const PartAddress& part) { return part.deviceId + Utf8ToUtf16("/" + LocalIdText(part.localId)); }

const PartDescription* TopologyDescription::FindPart(UINT localId) const
{
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [localId](const PartDescription& part) { return part.localId == localId; });
    return found == parts.end() ? nullptr : &*found;
}

Bytes ModuleListReply(const std::vector<FwModuleEntry>& modules)
{
    Bytes reply;
    AppendNumber(reply, 2 * sizeof(std::uint32_t) + modules.size() * EntrySize);
    AppendNumber(reply, modules.size());
    for (const FwModuleEntry& module : modules) {
        const std::size_t start = reply.size();
        AppendNumber(reply, module.type);
        // A GUID travels in its memory layout, which is little-endian on every system that this runs on.
        reply.resize(reply.size() + sizeof(GUID));
        std::memcpy(reply.data() + reply.size() - sizeof(GUID), &module.guid, sizeof(GUID));
        reply.resize(start + EntrySize);
    }
    return reply;
}

}  // namespace machine
