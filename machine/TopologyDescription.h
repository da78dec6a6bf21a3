// The device topologies of a simulated machine and the filters of its audio driver, as plain data.
#pragma once

#include <windows.h>

#include <devicetopology.h>

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace machine {

using Bytes = std::vector<std::uint8_t>;

// A part by the device whose topology holds it and its local id there.
struct PartAddress {
    std::wstring deviceId;
    UINT localId = 0;

    bool operator<(const PartAddress& other) const
    {
        return std::tie(deviceId, localId) < std::tie(other.deviceId, other.localId);
    }
    bool operator==(const PartAddress&) const = default;
};

// A local id in eight hexadecimal digits.
std::string LocalIdText(UINT localId);

// The part's name as Windows writes it: the device id, "/" and the local id in eight hexadecimal digits.
std::wstring GlobalId(const PartAddress& part);

enum class SelectorKind { None, Input, Output };

struct PartDescription {
    UINT localId = 0;
    std::optional<ConnectorType> connectorType;  // none: a subunit
    std::optional<PartAddress> connectedTo;      // of a connector
    std::optional<std::vector<UINT>> incoming;   // none: the part gives no list
    std::optional<std::vector<UINT>> outgoing;
    SelectorKind selector = SelectorKind::None;  // of a subunit

    bool operator==(const PartDescription&) const = default;
};

struct TopologyDescription {
    std::vector<PartDescription> parts;              // connectors are numbered in this order
    std::vector<std::pair<UINT, UINT>> signalPaths;  // from and to, by local id

    // Null where there is no such part.
    [[nodiscard]] const PartDescription* FindPart(UINT localId) const;
    bool operator==(const TopologyDescription&) const = default;
};

// A node that answers the platform's audio engine descriptor.
struct AudioEngineNode {
    ULONG nodeId = 0;
    ULONG hostPin = 0;
    ULONG offloadPin = 0;
    ULONG loopbackPin = 0;

    bool operator==(const AudioEngineNode&) const = default;
};

// A pin that answers the PP API.
struct PpApiPin {
    ULONG pinId = 0;
    Bytes version;                      // the answer to the version test
    std::optional<Bytes> reply;         // to the module list request; none: the request fails
    std::optional<ULONG> reportedSize;  // what the size query answers; none: the reply's size
    std::optional<ULONG> returnedSize;  // how many bytes the data query claims to return; none: as many as it does
    bool leavesReturnedSize = false;    // the data query does not tell: it leaves the caller's count as it is

    bool operator==(const PpApiPin&) const = default;
};

// A reply that lists modules by type number and GUID.
struct FwModuleEntry {
    std::uint32_t type = 0;
    GUID guid{};
};
Bytes ModuleListReply(const std::vector<FwModuleEntry>& modules);

// What IKsControl of a device reaches.
struct FilterDescription {
    std::vector<AudioEngineNode> audioEngineNodes;
    std::vector<PpApiPin> pins;

    bool operator==(const FilterDescription&) const = default;
};

// An adapter device of the driver.
struct AdapterDevice {
    std::wstring id;
    TopologyDescription topology;
    std::optional<FilterDescription> filter;  // none: IKsControl cannot be activated

    bool operator==(const AdapterDevice&) const = default;
};

}  // namespace machine
