#pragma once

#include "machine/JsonPlace.h"
#include "machine/MachineDescription.h"
#include "machine/TopologyJson.h"

#include <nlohmann/json_fwd.hpp>

#include <set>
#include <string>

namespace machine {

// What the devices of a machine are known by, gathered while they are read one after the other.
struct DeviceNames {
    std::set<std::wstring> endpointGuids;
    std::set<std::wstring> deviceIds;
    Connections connections;
    bool complete =
        true;  // ids and topologies of all were read without a mistake, so that what is not there is missing
};

Endpoint ReadEndpoint(const JsonPlace& place, DeviceNames& names);
AdapterDevice ReadAdapterDevice(const JsonPlace& place, DeviceNames& names);

// Without what an endpoint has by default.
nlohmann::ordered_json WriteEndpoint(const Endpoint& endpoint);
nlohmann::ordered_json WriteAdapterDevice(const AdapterDevice& device);

}  // namespace machine
