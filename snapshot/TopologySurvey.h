#pragma once

#include "common/ComPtr.h"
#include "machine/TopologyDescription.h"
#include "snapshot/Answers.h"

#include <devicetopology.h>
#include <mmdeviceapi.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace snapshot {

// The device topologies of a machine. Connectors are described wherever connections lead; lists of parts, where a walk
// of a run may come.
class TopologySurvey {
public:
    explicit TopologySurvey(Answers& answers) : answers_(answers) {}

    // Describes the connectors of a device, and of every device that connections lead to.
    void Add(const std::wstring& deviceId, const qov::ComPtr<IDeviceTopology>& topology);

    // Follows the connections and, by the flow, the incoming or outgoing parts from the first connector of a device on
    // every way that a run may take. Gives the connector parts at which a walk through parts ends.
    std::vector<machine::PartAddress> Walk(const std::wstring& deviceId, EDataFlow flow);

    // The software connectors to which a signal path leads from the part, by local id.
    std::vector<UINT> PathsFrom(const machine::PartAddress& from);

    [[nodiscard]] const machine::PartDescription& Part(const machine::PartAddress& address) const;
    [[nodiscard]] std::vector<std::wstring> DeviceIds() const;

    // Gives what could not be told apart a local id, and what is connected to a place in the description. To be called
    // when everything is asked.
    void Settle();

    // None where nothing is known of the device.
    [[nodiscard]] std::optional<machine::TopologyDescription> Describe(const std::wstring& deviceId) const;

private:
    struct KnownPart {
        machine::PartDescription description;
        qov::ComPtr<IPart> part;
        bool isConnectorDescribed = false;
        bool isNeighbour = false;
        bool askedLists[2] = {};  // by flow
        bool askedTopology = false;
    };
    // What GetConnector gives for a number.
    struct Slot {
        std::optional<UINT> localId;
        qov::ComPtr<IConnector> connector;
        Answer<qov::ComPtr<IPart>> part;
    };
    struct Device {
        qov::ComPtr<IDeviceTopology> topology;
        std::vector<Slot> slots;
        std::map<UINT, KnownPart> parts;
        std::set<std::pair<UINT, UINT>> signalPaths;
        UINT madeUpIds = 0;
    };
    struct OpenConnector {
        machine::PartAddress address;
        qov::ComPtr<IConnector> connector;
    };

    void DescribeWhatIsOpen();
    void ReadConnectors(const std::wstring& deviceId, const qov::ComPtr<IDeviceTopology>& topology);
    void AddConnector(const std::wstring& deviceId, Slot& slot);
    void DescribeConnector(const OpenConnector& open);
    void DescribeConnection(KnownPart& known, const std::wstring& object, IConnector& connector, bool connected);
    void Follow(const machine::PartAddress& address, const qov::ComPtr<IConnector>& other,
                const Answer<qov::ComPtr<IPart>>& part);
    void AddNeighbour(const machine::PartAddress& address, const qov::ComPtr<IPart>& part);
    void ReadSelector(const machine::PartAddress& address, KnownPart& known);
    const std::vector<UINT>& Neighbours(const machine::PartAddress& address, EDataFlow flow);
    std::vector<UINT> ReadList(const machine::PartAddress& address, IPartsList& list);
    void AskTopology(const machine::PartAddress& address);
    UINT Identify(const std::wstring& deviceId, IPart& part);
    UINT MadeUpId(Device& device);
    void SettleSlots(const std::wstring& deviceId, Device& device);

    Answers& answers_;
    std::map<std::wstring, Device> devices_;
    std::vector<std::pair<std::wstring, qov::ComPtr<IDeviceTopology>>> openTopologies_;
    std::vector<OpenConnector> openConnectors_;
    unsigned unknownDevices_ = 0;
};

}  // namespace snapshot
