#pragma once

#include "common/ComPtr.h"
#include "machine/MachineDescription.h"
#include "snapshot/Answers.h"

#include <mmdeviceapi.h>

#include <vector>

namespace snapshot {

struct FoundEndpoint {
    machine::Endpoint endpoint;  // without GUID, registry values and topology
    qov::ComPtr<IMMDevice> device;
};

// The endpoints in all states, in the platform's order.
std::vector<FoundEndpoint> ListEndpoints(IMMDeviceEnumerator& enumerator, Answers& answers);

// The endpoint's GUIDs in the order in which they are to be tried: what the property says, and what its id ends with.
std::vector<GUID> GuidsOf(const machine::Endpoint& endpoint);

}  // namespace snapshot
