// The ways of a run through the parts of the topologies.
#include "snapshot/TopologySurvey.h"

#include <algorithm>
#include <utility>

namespace snapshot {

namespace {

using machine::GlobalId;
using machine::PartAddress;
using qov::ComPtr;

// Far above real hardware, and above what a run takes up; who meets them goes round in circles.
constexpr std::size_t MaxParts = 8192;
constexpr UINT MaxListed = 2048;

}  // namespace

void TopologySurvey::AddNeighbour(const PartAddress& address, const ComPtr<IPart>& part)
{
    KnownPart& known = devices_[address.deviceId].parts[address.localId];
    if (std::exchange(known.isNeighbour, true))
        return;
    known.description.localId = address.localId;
    if (!known.part)
        known.part = part;
    const std::wstring object = GlobalId(address);
    PartType type = Connector;
    const bool typed =
        answers_.Put({"IPart::GetPartType", object}, type, [&](PartType& given) { return part->GetPartType(&given); });
    if (typed && type == Subunit) {
        ReadSelector(address, known);
        return;
    }
    const auto connector =
        Answers::Twice<ComPtr<IConnector>>([&](ComPtr<IConnector>& given) { return part.QueryInto(given); });
    if (!typed && FAILED(connector.result))
        return;  // a subunit, as far as can be told
    answers_.Keep({"IPart::QueryInterface", object}, connector);
    if (SUCCEEDED(connector.result))
        openConnectors_.push_back({address, connector.value});
    else if (!known.description.connectorType)
        known.description.connectorType = Unknown_Connector;
    DescribeWhatIsOpen();
}

void TopologySurvey::ReadSelector(const PartAddress& address, KnownPart& known)
{
    const auto has = [&](REFIID selector, const char* name) {
        ComPtr<IUnknown> object;
        return answers_.Put({"IPart::Activate", GlobalId(address), name, E_NOINTERFACE}, object,
                            [&](auto& given) { return known.part->Activate(CLSCTX_ALL, selector, given.PutVoid()); });
    };
    using enum machine::SelectorKind;
    known.description.selector = has(__uuidof(IAudioInputSelector), "IAudioInputSelector")     ? Input
                                 : has(__uuidof(IAudioOutputSelector), "IAudioOutputSelector") ? Output
                                                                                               : None;
}

std::vector<PartAddress> TopologySurvey::Walk(const std::wstring& deviceId, EDataFlow flow)
{
    std::vector<PartAddress> ends;
    std::set<PartAddress> seen;
    std::vector<PartAddress> connectors, parts;
    if (const auto found = devices_.find(deviceId); found != devices_.end() && !found->second.slots.empty()) {
        const std::vector<Slot>& slots = found->second.slots;
        if (!slots.front().localId)
            SettleSlots(deviceId, found->second);
        DescribeWhatIsOpen();
        connectors.push_back({deviceId, *slots.front().localId});
    }
    while (!connectors.empty()) {
        const PartAddress connector = connectors.back();
        connectors.pop_back();
        const auto& connectedTo = Part(connector).connectedTo;
        if (connectedTo && seen.insert(*connectedTo).second)
            parts.push_back(*connectedTo);
        while (!parts.empty()) {
            const PartAddress part = parts.back();
            parts.pop_back();
            for (const UINT localId : Neighbours(part, flow)) {
                const PartAddress neighbour{part.deviceId, localId};
                if (!Part(neighbour).connectorType) {
                    if (seen.insert(neighbour).second)
                        parts.push_back(neighbour);
                    continue;
                }
                if (flow == eRender)
                    AskTopology(part);
                if (std::find(ends.begin(), ends.end(), neighbour) == ends.end()) {
                    ends.push_back(neighbour);
                    connectors.push_back(neighbour);
                }
            }
        }
    }
    return ends;
}

const std::vector<UINT>& TopologySurvey::Neighbours(const PartAddress& address, EDataFlow flow)
{
    static const std::vector<UINT> none;
    KnownPart& known = devices_[address.deviceId].parts[address.localId];
    auto& list = flow == eCapture ? known.description.outgoing : known.description.incoming;
    if (!known.part || std::exchange(known.askedLists[flow == eCapture ? 1 : 0], true))
        return list ? *list : none;
    ComPtr<IPartsList> parts;
    const char* const call = flow == eCapture ? "IPart::EnumPartsOutgoing" : "IPart::EnumPartsIncoming";
    if (answers_.Put({call, GlobalId(address)}, parts,
                     [&](auto& given) {
                         return flow == eCapture ? known.part->EnumPartsOutgoing(given.Put())
                                                 : known.part->EnumPartsIncoming(given.Put());
                     }) &&
        parts)
        list = ReadList(address, *parts.Get());
    return list ? *list : none;
}

std::vector<UINT> TopologySurvey::ReadList(const PartAddress& address, IPartsList& list)
{
    const std::wstring object = GlobalId(address);
    Device& device = devices_[address.deviceId];
    UINT count = 0;
    answers_.Put({"IPartsList::GetCount", object}, count, [&](UINT& given) { return list.GetCount(&given); });
    std::vector<UINT> localIds;
    for (UINT index = 0; index < std::min(count, MaxListed); ++index) {
        if (device.parts.size() >= MaxParts) {
            answers_.Note(L"The device \"" + address.deviceId + L"\" has more parts than are taken up");
            break;
        }
        ComPtr<IPart> part;
        const bool given = answers_.Put({"IPartsList::GetPart", object, std::to_string(index)}, part,
                                        [&](auto& receiver) { return list.GetPart(index, receiver.Put()); });
        const UINT localId = given ? Identify(address.deviceId, *part.Get()) : MadeUpId(device);
        localIds.push_back(localId);
        device.parts[localId].description.localId = localId;
        if (given)
            AddNeighbour({address.deviceId, localId}, part);
    }
    return localIds;
}

void TopologySurvey::AskTopology(const PartAddress& address)
{
    KnownPart& known = devices_[address.deviceId].parts[address.localId];
    ComPtr<IDeviceTopology> topology;
    if (!known.part || std::exchange(known.askedTopology, true) ||
        !answers_.Put({"IPart::GetTopologyObject", GlobalId(address)}, topology,
                      [&](auto& given) { return known.part->GetTopologyObject(given.Put()); }))
        return;
    Add(address.deviceId, topology);
}

std::vector<UINT> TopologySurvey::PathsFrom(const PartAddress& from)
{
    AskTopology(from);
    Device& device = devices_[from.deviceId];
    std::vector<UINT> reached;
    const ComPtr<IPart> start = device.parts[from.localId].part;
    for (const auto& [localId, to] : device.parts) {
        if (!device.topology || !start || !to.part || to.description.connectorType != Software_IO)
            continue;
        ComPtr<IPartsList> path;
        const std::string ends = machine::LocalIdText(from.localId) + ", " + machine::LocalIdText(localId) + ", 1";
        if (!answers_.Put({"IDeviceTopology::GetSignalPath", from.deviceId, ends, E_NOTFOUND}, path,
                          [&, &to = to](auto& given) {
                              return device.topology->GetSignalPath(start.Get(), to.part.Get(), TRUE, given.Put());
                          }))
            continue;
        device.signalPaths.insert({from.localId, localId});
        reached.push_back(localId);
    }
    return reached;
}

}  // namespace snapshot
