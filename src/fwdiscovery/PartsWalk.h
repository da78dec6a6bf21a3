// The walk through the parts of one device topology.
#pragma once

#include "ILogger.h"
#include "common/ComPtr.h"

#include <windows.h>

#include <devicetopology.h>
#include <mmdeviceapi.h>

#include <set>

namespace qov {

// How many parts the walk of one endpoint may take up over all its topologies, and how many parts, the first included,
// may have their neighbours listed one behind the other. An audio adapter has some dozens of parts, and a signal path
// some ten of them: a walk that comes to these bounds goes round in circles. A part costs at most twenty platform
// calls, a step of the recursion less than 1 KiB of stack.
constexpr unsigned MaxWalkedParts = 1024;
constexpr unsigned MaxWalkDepth = 128;

// The state of the walk of one endpoint.
struct EndpointWalk {
    ILogger& logger;
    IMMDeviceEnumerator& enumerator;
    EDataFlow flow;
    ComPtr<IConnector> currentConnector;  // on which the walk stands
    ComPtr<IPart> lastPart{};             // the connector part at which the latest walk of parts ended
    bool offloadPinMissing = false;       // a walk ended at a connector without learning an offload pin
    std::set<ULONG> candidatePins{};      // pins of the driver's filter that may report modules
    unsigned walkedParts = 0;
};

// How a walk of parts ended.
enum class WalkEnd { ConnectorReached, NoConnectorReached, CallFailed };

// Follows the neighbours of `part` (the incoming ones, for a capture endpoint the outgoing ones), depth first, to the
// first connector part, and switches every selector that it passes to the part it came from. The connector becomes the
// walk's last part and current connector; on a render path the filter's offload pin becomes a candidate, and where it
// cannot be read offloadPinMissing is set.
//
// A topology that leads back to itself reaches no connector. A failed call below a neighbour makes the walk go on with
// the next one; any other failed call ends it. Never throws on its own account.
WalkEnd WalkParts(EndpointWalk& walk, const ComPtr<IPart>& part, unsigned depth = 0);

// The kernel-streaming control of the filter that a topology stands for.
HRESULT ActivateKsControl(IDeviceTopology& topology, IMMDeviceEnumerator& enumerator, ComPtr<IKsControl>& control);

}  // namespace qov
