#include "machine/FilterJson.h"

#include "machine/JsonValues.h"

#include <cstring>

namespace machine {

namespace {

using nlohmann::ordered_json;

const Bytes DefaultVersion = {1, 0, 0, 0, 0};
constexpr const char* Untouched = "untouched";

AudioEngineNode ReadAudioEngineNode(const JsonPlace& place, std::set<ULONG>& seen)
{
    place.AllowOnly({"node", "hostPin", "offloadPin", "loopbackPin"});
    AudioEngineNode node;
    place.Required("node", node.nodeId, Unique(ReadLocalId, seen, "is an earlier audio engine node too"));
    place.Optional("hostPin", node.hostPin, ReadUnsigned);
    place.Required("offloadPin", node.offloadPin, ReadUnsigned);
    place.Optional("loopbackPin", node.loopbackPin, ReadUnsigned);
    return node;
}

ordered_json WriteAudioEngineNode(const AudioEngineNode& node)
{
    ordered_json written;
    written["node"] = LocalIdText(node.nodeId);
    if (node.hostPin != 0)
        written["hostPin"] = node.hostPin;
    written["offloadPin"] = node.offloadPin;
    if (node.loopbackPin != 0)
        written["loopbackPin"] = node.loopbackPin;
    return written;
}

FwModuleEntry ReadModule(const JsonPlace& place)
{
    place.AllowOnly({"type", "guid"});
    FwModuleEntry module;
    place.Required("type", module.type, ReadUnsigned);
    place.Required("guid", module.guid, ReadGuid);
    return module;
}

// The modules whose list the reply is; none: it is none, or has more in it.
std::optional<std::vector<FwModuleEntry>> FindModules(const Bytes& reply)
{
    const std::size_t headSize = ModuleListReply({}).size();
    const std::size_t entrySize = ModuleListReply({{}}).size() - headSize;
    std::vector<FwModuleEntry> modules;
    for (std::size_t start = headSize; start + entrySize <= reply.size(); start += entrySize) {
        FwModuleEntry module;
        std::memcpy(&module.type, reply.data() + start, sizeof(module.type));
        std::memcpy(&module.guid, reply.data() + start + sizeof(module.type), sizeof(module.guid));
        modules.push_back(module);
    }
    return ModuleListReply(modules) == reply ? std::optional(modules) : std::nullopt;
}

PpApiPin ReadPin(const JsonPlace& place, std::set<ULONG>& seen)
{
    place.AllowOnly({"id", "version", "modules", "reply", "reportedSize", "returnedSize"});
    PpApiPin pin;
    place.Required("id", pin.pinId, Unique(ReadUnsigned, seen, "is the id of an earlier pin too"));
    pin.version = DefaultVersion;
    place.Optional("version", pin.version, ReadBytes);
    std::optional<std::vector<FwModuleEntry>> modules;
    bool read = place.Optional("modules", modules, ListOf(ReadModule));
    read &= place.Optional("reply", pin.reply, ReadBytes);
    read &= place.Optional("reportedSize", pin.reportedSize, ReadUnsigned);
    read &= place.Optional("returnedSize", pin.returnedSize, [&](const JsonPlace& size) -> std::optional<ULONG> {
        if (size.IsNumber())
            return ReadUnsigned(size);
        pin.leavesReturnedSize = size.Text("a whole number or \"untouched\"") == Untouched;
        if (!pin.leavesReturnedSize)
            size.Refuse("must be a whole number or \"untouched\"");
        return std::nullopt;
    });
    if (read && modules && pin.reply)
        place.Note(R"(may have one of "modules" and "reply")");
    if (modules)
        pin.reply = ModuleListReply(*modules);
    if (read && !pin.reply && (pin.reportedSize || pin.returnedSize || pin.leavesReturnedSize))
        place.Note(R"(may have "reportedSize" and "returnedSize" with "modules" or "reply" only)");
    return pin;
}

ordered_json WritePin(const PpApiPin& pin)
{
    ordered_json written;
    written["id"] = pin.pinId;
    if (pin.version != DefaultVersion)
        written["version"] = WriteBytes(pin.version);
    if (const auto modules = pin.reply ? FindModules(*pin.reply) : std::nullopt) {
        written["modules"] = ordered_json::array();
        for (const FwModuleEntry& module : *modules)
            written["modules"].push_back({{"type", module.type}, {"guid", WriteGuid(module.guid)}});
    } else if (pin.reply) {
        written["reply"] = WriteBytes(*pin.reply);
    }
    if (pin.reportedSize)
        written["reportedSize"] = *pin.reportedSize;
    if (pin.leavesReturnedSize)
        written["returnedSize"] = Untouched;
    else if (pin.returnedSize)
        written["returnedSize"] = *pin.returnedSize;
    return written;
}

}  // namespace

FilterDescription ReadFilter(const JsonPlace& place)
{
    place.AllowOnly({"audioEngine", "pins"});
    FilterDescription filter;
    std::set<ULONG> nodes, pins;
    place.Optional("audioEngine", filter.audioEngineNodes,
                   ListOf([&](const JsonPlace& node) { return ReadAudioEngineNode(node, nodes); }));
    place.Optional("pins", filter.pins, ListOf([&](const JsonPlace& pin) { return ReadPin(pin, pins); }));
    return filter;
}

ordered_json WriteFilter(const FilterDescription& filter)
{
    ordered_json written = ordered_json::object();
    for (const AudioEngineNode& node : filter.audioEngineNodes)
        written["audioEngine"].push_back(WriteAudioEngineNode(node));
    for (const PpApiPin& pin : filter.pins)
        written["pins"].push_back(WritePin(pin));
    return written;
}

}  // namespace machine
