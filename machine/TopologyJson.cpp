#include "machine/TopologyJson.h"

#include "machine/JsonValues.h"

namespace machine {

namespace {

std::vector<UINT> ReadLocalIds(const JsonPlace& place)
{
    std::vector<UINT> localIds;
    for (const JsonPlace& element : place.Elements())
        localIds.push_back(ReadLocalId(element));
    return localIds;
}

PartDescription ReadPart(const JsonPlace& place)
{
    place.AllowOnly({"id", "connector", "connectedTo", "incoming", "outgoing", "selector"});
    PartDescription part;
    part.localId = ReadLocalId(place.Required("id"));
    if (const auto connector = place.Optional("connector"))
        part.connectorType = ReadNamed<ConnectorType>(*connector, {{"unknown", Unknown_Connector},
                                                                   {"physicalInternal", Physical_Internal},
                                                                   {"physicalExternal", Physical_External},
                                                                   {"softwareIO", Software_IO},
                                                                   {"softwareFixed", Software_Fixed},
                                                                   {"network", Network}});
    if (const auto connectedTo = place.Optional("connectedTo")) {
        if (!part.connectorType)
            connectedTo->Refuse("belongs to a connector");
        connectedTo->AllowOnly({"device", "part"});
        part.connectedTo =
            PartAddress{ReadWideText(connectedTo->Required("device")), ReadLocalId(connectedTo->Required("part"))};
    }
    if (const auto incoming = place.Optional("incoming"))
        part.incoming = ReadLocalIds(*incoming);
    if (const auto outgoing = place.Optional("outgoing"))
        part.outgoing = ReadLocalIds(*outgoing);
    if (const auto selector = place.Optional("selector")) {
        if (part.connectorType)
            selector->Refuse("belongs to a subunit");
        part.selector =
            ReadNamed<SelectorKind>(*selector, {{"input", SelectorKind::Input}, {"output", SelectorKind::Output}});
    }
    return part;
}

void RefuseUnknownNeighbours(const std::vector<JsonPlace>& places, const TopologyDescription& topology)
{
    for (const JsonPlace& place : places)
        for (const char* const name : {"incoming", "outgoing"})
            if (const auto list = place.Optional(name))
                for (const JsonPlace& element : list->Elements())
                    if (topology.FindPart(ReadLocalId(element)) == nullptr)
                        element.Refuse("is no part of this topology");
}

AudioEngineNode ReadAudioEngineNode(const JsonPlace& place)
{
    place.AllowOnly({"node", "hostPin", "offloadPin", "loopbackPin"});
    AudioEngineNode node;
    node.nodeId = ReadLocalId(place.Required("node"));
    node.offloadPin = ReadUnsigned(place.Required("offloadPin"));
    if (const auto pin = place.Optional("hostPin"))
        node.hostPin = ReadUnsigned(*pin);
    if (const auto pin = place.Optional("loopbackPin"))
        node.loopbackPin = ReadUnsigned(*pin);
    return node;
}

Bytes ReadModuleList(const JsonPlace& place)
{
    std::vector<FwModuleEntry> modules;
    for (const JsonPlace& element : place.Elements()) {
        element.AllowOnly({"type", "guid"});
        modules.push_back({ReadUnsigned(element.Required("type")), ReadGuid(element.Required("guid"))});
    }
    return ModuleListReply(modules);
}

PpApiPin ReadPin(const JsonPlace& place)
{
    place.AllowOnly({"id", "version", "modules", "reply", "reportedSize", "returnedSize"});
    PpApiPin pin;
    pin.pinId = ReadUnsigned(place.Required("id"));
    const auto version = place.Optional("version");
    pin.version = version ? ReadBytes(*version) : Bytes{1, 0, 0, 0, 0};
    const auto modules = place.Optional("modules");
    const auto reply = place.Optional("reply");
    if (modules && reply)
        place.Refuse(R"(may have one of "modules" and "reply")");
    if (modules)
        pin.reply = ReadModuleList(*modules);
    else if (reply)
        pin.reply = ReadBytes(*reply);
    for (const auto& [name, size] :
         {std::pair{"reportedSize", &pin.reportedSize}, {"returnedSize", &pin.returnedSize}}) {
        const auto number = place.Optional(name);
        if (number && !pin.reply)
            number->Refuse("belongs to a pin with a reply");
        if (number)
            *size = ReadUnsigned(*number);
    }
    return pin;
}

FilterDescription ReadFilter(const JsonPlace& place)
{
    place.AllowOnly({"audioEngine", "pins"});
    FilterDescription filter;
    if (const auto nodes = place.Optional("audioEngine"))
        for (const JsonPlace& node : nodes->Elements())
            filter.audioEngineNodes.push_back(ReadAudioEngineNode(node));
    if (const auto pins = place.Optional("pins"))
        for (const JsonPlace& pin : pins->Elements())
            filter.pins.push_back(ReadPin(pin));
    return filter;
}

}  // namespace

TopologyDescription ReadTopology(const JsonPlace& place)
{
    place.AllowOnly({"parts", "signalPaths"});
    TopologyDescription topology;
    const std::vector<JsonPlace> parts = place.Required("parts").Elements();
    for (const JsonPlace& element : parts) {
        PartDescription part = ReadPart(element);
        if (topology.FindPart(part.localId) != nullptr)
            element.Required("id").Refuse("is the id of an earlier part too");
        topology.parts.push_back(std::move(part));
    }
    RefuseUnknownNeighbours(parts, topology);
    if (const auto paths = place.Optional("signalPaths")) {
        for (const JsonPlace& element : paths->Elements()) {
            const std::vector<UINT> path = ReadLocalIds(element);
            if (path.size() != 2 || topology.FindPart(path[0]) == nullptr || topology.FindPart(path[1]) == nullptr)
                element.Refuse("must be two ids of parts of this topology: from and to");
            topology.signalPaths.emplace_back(path[0], path[1]);
        }
    }
    return topology;
}

AdapterDevice ReadAdapterDevice(const JsonPlace& place)
{
    place.AllowOnly({"id", "topology", "filter"});
    AdapterDevice device;
    device.id = ReadWideText(place.Required("id"));
    device.topology = ReadTopology(place.Required("topology"));
    if (const auto filter = place.Optional("filter"))
        device.filter = ReadFilter(*filter);
    return device;
}

}  // namespace machine
