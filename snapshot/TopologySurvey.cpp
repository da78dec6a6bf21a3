#include "snapshot/TopologySurvey.h"

#include "machine/Utf16.h"

#include <algorithm>
#include <utility>

namespace snapshot {

namespace {

using machine::GlobalId;
using machine::PartAddress;
using qov::ComPtr;

// Far above real hardware, and above what a run takes up; who meets them goes round in circles.
constexpr std::size_t MaxDevices = 1024;
constexpr UINT MaxConnectors = 1024;

constexpr UINT FirstMadeUpId = 0xFFFF0000;

// "<device id>/<local id in hexadecimal digits>"
std::optional<PartAddress> ReadGlobalId(const std::wstring& text)
{
    const std::size_t slash = text.rfind(L'/');
    if (slash == std::wstring::npos || text.size() - slash != 9)
        return std::nullopt;
    const std::string digits = machine::Utf16ToUtf8(text.substr(slash + 1));
    if (digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return std::nullopt;
    return PartAddress{text.substr(0, slash), static_cast<UINT>(std::stoul(digits, nullptr, 16))};
}

std::optional<PartAddress> AddressOf(IPart& part)
{
    std::wstring text;
    const HRESULT result = TextOf([&](LPWSTR* given) { return part.GetGlobalId(given); })(text);
    return SUCCEEDED(result) ? ReadGlobalId(text) : std::nullopt;
}

}  // namespace

void TopologySurvey::Add(const std::wstring& deviceId, const ComPtr<IDeviceTopology>& topology)
{
    openTopologies_.emplace_back(deviceId, topology);
    DescribeWhatIsOpen();
}

void TopologySurvey::DescribeWhatIsOpen()
{
    while (!openConnectors_.empty() || !openTopologies_.empty()) {
        if (!openConnectors_.empty()) {
            const OpenConnector open = openConnectors_.back();
            openConnectors_.pop_back();
            DescribeConnector(open);
            continue;
        }
        const auto [deviceId, topology] = openTopologies_.back();
        openTopologies_.pop_back();
        if (!devices_.contains(deviceId) && devices_.size() >= MaxDevices)
            answers_.Note(L"There are more devices than are taken up: \"" + deviceId + L"\" and others are left out");
        else if (!devices_[deviceId].topology)
            ReadConnectors(deviceId, topology);
    }
}

void TopologySurvey::ReadConnectors(const std::wstring& deviceId, const ComPtr<IDeviceTopology>& topology)
{
    Device& device = devices_[deviceId];
    device.topology = topology;
    std::wstring ownId = deviceId;
    answers_.Put({"IDeviceTopology::GetDeviceId", deviceId}, ownId,
                 TextOf([&](LPWSTR* text) { return topology->GetDeviceId(text); }));
    if (answers_.Clean(ownId) != deviceId)
        answers_.Note(L"The topology of \"" + deviceId + L"\" has another device id: \"" + answers_.Clean(ownId) +
                      L"\"");
    UINT count = 0;
    const bool counted = answers_.Put({"IDeviceTopology::GetConnectorCount", deviceId}, count,
                                      [&](UINT& number) { return topology->GetConnectorCount(&number); });
    // The first one is asked for whatever their number is.
    for (UINT index = 0; index == 0 || (index < (counted ? count : MaxConnectors) && index < MaxConnectors); ++index) {
        auto answer = Answers::Twice<ComPtr<IConnector>>(
            [&](ComPtr<IConnector>& given) { return topology->GetConnector(index, given.Put()); });
        const bool within = counted && index < count;
        const HRESULT expected = within ? S_OK : E_INVALIDARG;
        const bool given =
            answers_.Keep({"IDeviceTopology::GetConnector", deviceId, std::to_string(index), expected}, answer);
        if (!given && !within)
            break;
        device.slots.push_back({{}, std::move(answer.value), {}});
        if (given)
            AddConnector(deviceId, device.slots.back());
    }
}

void TopologySurvey::AddConnector(const std::wstring& deviceId, Slot& slot)
{
    slot.part = Answers::Twice<ComPtr<IPart>>([&](ComPtr<IPart>& part) { return slot.connector.QueryInto(part); });
    if (FAILED(slot.part.result))
        return;
    const UINT localId = Identify(deviceId, *slot.part.value.Get());
    const auto& slots = devices_[deviceId].slots;
    if (std::any_of(slots.begin(), slots.end(), [&](const Slot& other) { return other.localId == localId; })) {
        answers_.Note(L"Two connectors of \"" + deviceId + L"\" have the same local id");
        return;
    }
    slot.localId = localId;
    KnownPart& known = devices_[deviceId].parts[localId];
    known.description.localId = localId;
    known.part = slot.part.value;
    answers_.Keep({"IConnector::QueryInterface", GlobalId({deviceId, localId})}, slot.part);
    openConnectors_.push_back({{deviceId, localId}, slot.connector});
}

void TopologySurvey::DescribeConnector(const OpenConnector& open)
{
    KnownPart& known = devices_[open.address.deviceId].parts[open.address.localId];
    if (std::exchange(known.isConnectorDescribed, true))
        return;
    known.description.localId = open.address.localId;
    const std::wstring object = GlobalId(open.address);
    IConnector& connector = *open.connector.Get();
    ConnectorType type = Unknown_Connector;
    answers_.Put({"IConnector::GetType", object}, type,
                 [&](ConnectorType& given) { return connector.GetType(&given); });
    if (type < Unknown_Connector || type > Network) {
        answers_.Note(L"The connector \"" + object + L"\" is of no known type");
        type = Unknown_Connector;
    }
    known.description.connectorType = type;

    BOOL connected = FALSE;
    // Of an unconnected software connector a run asks no more.
    if (answers_.Put({"IConnector::IsConnected", object}, connected,
                     [&](BOOL& given) { return connector.IsConnected(&given); }) &&
        (connected || type != Software_IO))
        DescribeConnection(known, object, connector, connected);
}

void TopologySurvey::DescribeConnection(KnownPart& known, const std::wstring& object, IConnector& connector,
                                        bool connected)
{
    const HRESULT expected = connected ? S_OK : E_NOTFOUND;
    std::wstring connectorId, otherDevice;
    const bool named = answers_.Put({"IConnector::GetConnectorIdConnectedTo", object, {}, expected}, connectorId,
                                    TextOf([&](LPWSTR* text) { return connector.GetConnectorIdConnectedTo(text); }));
    const bool deviceNamed = answers_.Put({"IConnector::GetDeviceIdConnectedTo", object, {}, expected}, otherDevice,
                                          TextOf([&](LPWSTR* text) { return connector.GetDeviceIdConnectedTo(text); }));
    ComPtr<IConnector> other;
    const bool reached = answers_.Put({"IConnector::GetConnectedTo", object, {}, expected}, other,
                                      [&](auto& given) { return connector.GetConnectedTo(given.Put()); });
    if (!connected) {
        if (named || deviceNamed || reached)
            answers_.Note(L"The connector \"" + object + L"\" is connected to nothing, but names the other side");
        return;
    }
    std::optional<PartAddress>& address = known.description.connectedTo;
    otherDevice = answers_.Clean(otherDevice);
    if (named)
        address = ReadGlobalId(answers_.Clean(connectorId));
    if (deviceNamed && address)
        address->deviceId = otherDevice;
    if (named && (!address || GlobalId(*address) != connectorId))
        answers_.Note(L"The connector \"" + object + L"\" names the other side in another form: \"" +
                      answers_.Clean(connectorId) + L"\"");
    const auto query = [&](ComPtr<IPart>& given) { return other.QueryInto(given); };
    const auto otherPart = reached ? Answers::Twice<ComPtr<IPart>>(query) : Answer<ComPtr<IPart>>();
    if (!address && otherPart.value)
        address = AddressOf(*otherPart.value.Get());
    if (!address)
        address = deviceNamed ? PartAddress{otherDevice, MadeUpId(devices_[otherDevice])}
                              : PartAddress{L"unknown device " + std::to_wstring(++unknownDevices_), 0};
    if (reached)
        Follow(*address, other, otherPart);
}

void TopologySurvey::Follow(const PartAddress& address, const ComPtr<IConnector>& other,
                            const Answer<ComPtr<IPart>>& part)
{
    answers_.Keep({"IConnector::QueryInterface", GlobalId(address)}, part);
    openConnectors_.push_back({address, other});
    if (FAILED(part.result))
        return;
    KnownPart& reached = devices_[address.deviceId].parts[address.localId];
    reached.description.localId = address.localId;
    if (!reached.part)
        reached.part = part.value;
    ComPtr<IDeviceTopology> topology;
    if (!devices_[address.deviceId].topology && SUCCEEDED(part.value->GetTopologyObject(topology.Put())))
        openTopologies_.emplace_back(address.deviceId, topology);
}

// Where the part does not tell, as its global id has it.
UINT TopologySurvey::Identify(const std::wstring& deviceId, IPart& part)
{
    const auto own = Answers::Twice<UINT>([&](UINT& localId) { return part.GetLocalId(&localId); });
    UINT localId = own.value;
    if (FAILED(own.result)) {
        const std::optional<PartAddress> address = AddressOf(part);
        localId = address ? address->localId : MadeUpId(devices_[deviceId]);
    }
    answers_.Keep({"IPart::GetLocalId", GlobalId({deviceId, localId})}, own);
    return localId;
}

UINT TopologySurvey::MadeUpId(Device& device) { return FirstMadeUpId + device.madeUpIds++; }

const machine::PartDescription& TopologySurvey::Part(const PartAddress& address) const
{
    static const machine::PartDescription unknown;
    const auto device = devices_.find(address.deviceId);
    if (device == devices_.end())
        return unknown;
    const auto part = device->second.parts.find(address.localId);
    return part == device->second.parts.end() ? unknown : part->second.description;
}

std::vector<std::wstring> TopologySurvey::DeviceIds() const
{
    std::vector<std::wstring> ids;
    for (const auto& [id, device] : devices_)
        ids.push_back(id);
    return ids;
}

void TopologySurvey::Settle()
{
    for (auto& [deviceId, device] : devices_)
        SettleSlots(deviceId, device);
    DescribeWhatIsOpen();
    std::vector<PartAddress> connected;
    for (const auto& [deviceId, device] : devices_)
        for (const auto& [localId, part] : device.parts)
            if (part.description.connectedTo)
                connected.push_back(*part.description.connectedTo);
    for (const PartAddress& address : connected) {
        machine::PartDescription& part = devices_[address.deviceId].parts[address.localId].description;
        part.localId = address.localId;
        if (!part.connectorType)
            part.connectorType = Unknown_Connector;
        part.selector = machine::SelectorKind::None;
    }
}

// Connectors that would not tell which part they are: those of the parts that no number belongs to.
void TopologySurvey::SettleSlots(const std::wstring& deviceId, Device& device)
{
    std::set<UINT> left;
    for (const auto& [localId, part] : device.parts)
        if (part.description.connectorType)
            left.insert(localId);
    for (const Slot& slot : device.slots)
        if (slot.localId)
            left.erase(*slot.localId);
    for (Slot& slot : device.slots) {
        if (slot.localId)
            continue;
        ConnectorType type = Unknown_Connector;
        const bool typed = slot.connector && SUCCEEDED(slot.connector->GetType(&type));
        const auto same = std::find_if(left.begin(), left.end(), [&](UINT localId) {
            return !typed || device.parts[localId].description.connectorType == type;
        });
        slot.localId = same == left.end() ? MadeUpId(device) : *same;
        KnownPart& known = device.parts[*slot.localId];
        known.description.localId = *slot.localId;
        if (same != left.end())
            left.erase(same);
        if (!known.description.connectorType)
            known.description.connectorType = Unknown_Connector;
        if (!slot.connector)
            continue;
        answers_.Keep({"IConnector::QueryInterface", GlobalId({deviceId, *slot.localId})}, slot.part);
        openConnectors_.push_back({{deviceId, *slot.localId}, slot.connector});
    }
}

std::optional<machine::TopologyDescription> TopologySurvey::Describe(const std::wstring& deviceId) const
{
    const auto found = devices_.find(deviceId);
    if (found == devices_.end())
        return std::nullopt;
    const Device& device = found->second;
    machine::TopologyDescription topology;
    std::set<UINT> listed;
    for (const Slot& slot : device.slots)
        if (listed.insert(*slot.localId).second)
            topology.parts.push_back(device.parts.at(*slot.localId).description);
    for (const bool connectors : {true, false})
        for (const auto& [localId, part] : device.parts)
            if (!listed.contains(localId) && part.description.connectorType.has_value() == connectors)
                topology.parts.push_back(part.description);
    topology.signalPaths.assign(device.signalPaths.begin(), device.signalPaths.end());
    return topology;
}

}  // namespace snapshot
