#include "machine/TopologyJson.h"

#include "machine/JsonValues.h"

namespace machine {

namespace {

using nlohmann::ordered_json;

constexpr NamedValue<ConnectorType> ConnectorTypes[] = {
    {"unknown", Unknown_Connector}, {"physicalInternal", Physical_Internal}, {"physicalExternal", Physical_External},
    {"softwareIO", Software_IO},    {"softwareFixed", Software_Fixed},       {"network", Network},
};
constexpr NamedValue<SelectorKind> Selectors[] = {{"input", SelectorKind::Input}, {"output", SelectorKind::Output}};

using Neighbours = std::vector<std::pair<JsonPlace, UINT>>;

PartAddress ReadPartAddress(const JsonPlace& place, Connections& connections)
{
    place.AllowOnly({"device", "part"});
    PartAddress address;
    const bool known = place.Required("device", address.deviceId, ReadWideText);
    if (place.Required("part", address.localId, ReadLocalId) && known)
        connections.emplace_back(place, address);
    return address;
}

PartDescription ReadPart(const JsonPlace& place, std::set<UINT>& ids, Neighbours& neighbours, Connections& connections)
{
    place.AllowOnly({"id", "connector", "connectedTo", "incoming", "outgoing", "selector"});
    const auto neighbour = [&](const JsonPlace& element) {
        const UINT localId = ReadLocalId(element);
        neighbours.emplace_back(element, localId);
        return localId;
    };
    PartDescription part;
    place.Required("id", part.localId, Unique(ReadLocalId, ids, "is the id of an earlier part too"));
    const bool known = place.Optional("connector", part.connectorType, OneOf(ConnectorTypes));
    place.Optional("connectedTo", part.connectedTo, [&](const JsonPlace& connectedTo) {
        if (known && !part.connectorType)
            connectedTo.Note("belongs to a connector");
        return ReadPartAddress(connectedTo, connections);
    });
    place.Optional("incoming", part.incoming, ListOf(neighbour));
    place.Optional("outgoing", part.outgoing, ListOf(neighbour));
    place.Optional("selector", part.selector, [&](const JsonPlace& selector) {
        if (part.connectorType)
            selector.Note("belongs to a subunit");
        return OneOf(Selectors)(selector);
    });
    return part;
}

ordered_json WriteLocalIds(const std::vector<UINT>& localIds)
{
    ordered_json written = ordered_json::array();
    for (const UINT localId : localIds)
        written.push_back(LocalIdText(localId));
    return written;
}

ordered_json WritePart(const PartDescription& part)
{
    ordered_json written;
    written["id"] = LocalIdText(part.localId);
    if (part.connectorType)
        written["connector"] = WriteName(ConnectorTypes, *part.connectorType);
    if (part.connectedTo) {
        written["connectedTo"]["device"] = WriteWideText(part.connectedTo->deviceId);
        written["connectedTo"]["part"] = LocalIdText(part.connectedTo->localId);
    }
    if (part.incoming)
        written["incoming"] = WriteLocalIds(*part.incoming);
    if (part.outgoing)
        written["outgoing"] = WriteLocalIds(*part.outgoing);
    if (part.selector != SelectorKind::None)
        written["selector"] = WriteName(Selectors, part.selector);
    return written;
}

std::pair<UINT, UINT> ReadSignalPath(const JsonPlace& place, Neighbours& neighbours)
{
    const std::vector<JsonPlace> ends = place.Elements();
    if (ends.size() != 2)
        place.Refuse("must be two ids of parts of this topology: from and to");
    const UINT from = ReadLocalId(ends[0]);
    neighbours.emplace_back(ends[0], from);
    const UINT to = ReadLocalId(ends[1]);
    neighbours.emplace_back(ends[1], to);
    return {from, to};
}

}  // namespace

TopologyDescription ReadTopology(const JsonPlace& place, Connections& connections)
{
    place.AllowOnly({"parts", "signalPaths"});
    TopologyDescription topology;
    std::set<UINT> ids;
    Neighbours neighbours;
    const bool known =
        place.Required("parts", topology.parts,
                       ListOf([&](const JsonPlace& part) { return ReadPart(part, ids, neighbours, connections); }));
    std::set<std::pair<UINT, UINT>> paths;
    const auto readPath = [&](const JsonPlace& path) { return ReadSignalPath(path, neighbours); };
    place.Optional("signalPaths", topology.signalPaths,
                   ListOf(Unique(readPath, paths, "is an earlier signal path too")));
    for (const auto& [neighbourPlace, localId] : neighbours)
        if (known && !ids.contains(localId))
            neighbourPlace.Note("is no part of this topology");
    return topology;
}

ordered_json WriteTopology(const TopologyDescription& topology)
{
    ordered_json written;
    written["parts"] = ordered_json::array();
    for (const PartDescription& part : topology.parts)
        written["parts"].push_back(WritePart(part));
    for (const auto& [from, to] : topology.signalPaths)
        written["signalPaths"].push_back(WriteLocalIds({from, to}));
    return written;
}

}  // namespace machine
