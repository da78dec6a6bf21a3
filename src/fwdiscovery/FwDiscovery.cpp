#include "fwdiscovery/FwDiscovery.h"

#include "common/Failure.h"
#include "common/Logging.h"
#include "common/Owners.h"
#include "discovery/ActiveEndpoints.h"
#include "fwdiscovery/PartsWalk.h"
#include "fwdiscovery/PinModules.h"

#include <objbase.h>

#include <algorithm>
#include <string>

namespace qov::AudioModulesUtils {

namespace {

// More connectors than any filter has: local ids of parts have 16 bits, and real filters have some ten.
constexpr UINT MaxScannedConnectors = 1024;

GUID ReadEndpointGuid(IMMDevice& device)
{
    ComPtr<IPropertyStore> properties;
    FailIfFailed(device.OpenPropertyStore(STGM_READ, properties.Put()),
                 "Failed to open device property store! Result: 0x");
    PropertyValue guidText;
    FailIfFailed(properties->GetValue(EndpointGuidKey, guidText.Put()), "Failed to read device GUID! Result: 0x");
    GUID guid{};
    FailIfFailed(CLSIDFromString(guidText.Text().c_str(), &guid), "Failed to convert device GUID! Result: 0x");
    return guid;
}

EDataFlow ReadDataFlow(const ComPtr<IMMDevice>& device)
{
    ComPtr<IMMEndpoint> endpoint;
    FailIfFailed(device.QueryInto(endpoint), "Endpoint interface query failed! Result: 0x");
    EDataFlow flow = eRender;
    FailIfFailed(endpoint->GetDataFlow(&flow), "GetDataFlow failed! Result: 0x");
    return flow;
}

ComPtr<IConnector> FirstConnector(IMMDevice& device)
{
    ComPtr<IDeviceTopology> topology;
    FailIfFailed(device.Activate(__uuidof(IDeviceTopology), CLSCTX_ALL, nullptr, topology.PutVoid()),
                 "Device activation failed! Result: 0x");
    ComPtr<IConnector> connector;
    FailIfFailed(topology->GetConnector(0, connector.Put()), "GetConnector failed! Result: 0x");
    return connector;
}

void LogConnection(IConnector& connector, ILogger& logger)
{
    TaskText connectorId;
    TaskText deviceId;
    (void)connector.GetConnectorIdConnectedTo(connectorId.Put());
    (void)connector.GetDeviceIdConnectedTo(deviceId.Put());
    LogInfo(logger, L"Current connector details:\nConnectorIdConnectedTo:" + connectorId.Text() +
                        L"\nDeviceIdConnectedTo:" + deviceId.Text());
}

// Follows the connectors until the current one is an unconnected Software_IO connector of the driver's filter. False
// when the endpoint cannot be walked.
bool WalkToSoftwarePin(EndpointWalk& walk)
{
    while (true) {
        LogInfo(walk.logger, L"*** NEXT CONNECTOR ***");
        BOOL connected = FALSE;
        if (FAILED(walk.currentConnector->IsConnected(&connected)))
            return false;
        if (!connected) {
            ConnectorType type = Unknown_Connector;
            if (FAILED(walk.currentConnector->GetType(&type)))
                return false;
            if (type == Software_IO)
                return true;
        }
        LogConnection(*walk.currentConnector.Get(), walk.logger);
        ComPtr<IConnector> otherSide;
        if (FAILED(walk.currentConnector->GetConnectedTo(otherSide.Put())))
            return false;
        ComPtr<IPart> part;
        if (FAILED(otherSide.QueryInto(part)))
            return false;
        if (WalkParts(walk, part) != WalkEnd::ConnectorReached)
            return false;
    }
}

// Adds the software pins that a signal path leads to from where the walk ended.
void ScanSoftwarePins(EndpointWalk& walk, IDeviceTopology& filter, UINT connectorCount)
{
    for (UINT index = 0; index < std::min(connectorCount, MaxScannedConnectors); ++index) {
        ComPtr<IConnector> connector;
        if (FAILED(filter.GetConnector(index, connector.Put())))
            continue;
        ConnectorType type = Unknown_Connector;
        if (FAILED(connector->GetType(&type)))
            return;
        if (type != Software_IO)
            continue;
        ComPtr<IPart> part;
        if (FAILED(connector.QueryInto(part)))
            return;
        ComPtr<IPartsList> path;
        if (!walk.offloadPinMissing || FAILED(filter.GetSignalPath(walk.lastPart.Get(), part.Get(), TRUE, path.Put())))
            continue;
        UINT localId = 0;
        if (SUCCEEDED(part->GetLocalId(&localId)))
            walk.candidatePins.insert(localId & 0xFFFF);
    }
}

// The modules of the filter whose software connector the walk has reached.
ModuleList ReadFilterModules(EndpointWalk& walk, const AudioEndpoint& endpoint)
{
    LogInfo(walk.logger, L"Found a Software_IO connector for current device");
    ComPtr<IPart> part;
    ComPtr<IDeviceTopology> filter;
    UINT connectorCount = 0;
    if (FAILED(walk.currentConnector.QueryInto(part)) || FAILED(part->GetTopologyObject(filter.Put())) ||
        FAILED(filter->GetConnectorCount(&connectorCount)))
        return {};
    ScanSoftwarePins(walk, *filter.Get(), connectorCount);
    ComPtr<IKsControl> control;
    if (FAILED(ActivateKsControl(*filter.Get(), walk.enumerator, control)))
        return {};
    LogInfo(walk.logger, L"Starting to look for a connector that supports PP API...");
    ModuleList modules;
    for (const ULONG pinId : walk.candidatePins)
        ReadPinModules(control, pinId, endpoint, walk.logger, modules);
    return modules;
}

ModuleList DiscoverEndpointModules(IMMDeviceCollection& collection, UINT index, IMMDeviceEnumerator& enumerator,
                                   ILogger& logger)
{
    LogInfo(logger, L"****** NEXT DEVICE ******");
    ComPtr<IMMDevice> device;
    FailIfFailed(collection.Item(index, device.Put()), "Failed to get device from collection! Result: 0x");
    TaskText deviceId;
    FailIfFailed(device->GetId(deviceId.Put()), "Failed to get device id! Result: 0x");
    LogInfo(logger, L"Current device id:" + deviceId.Text());

    AudioEndpoint endpoint;
    endpoint.AudioEndpointGuid = ReadEndpointGuid(*device.Get());
    const EDataFlow flow = ReadDataFlow(device);
    endpoint.Flow = static_cast<DataFlow>(flow);

    EndpointWalk walk{logger, enumerator, flow, FirstConnector(*device.Get())};
    return WalkToSoftwarePin(walk) ? ReadFilterModules(walk, endpoint) : ModuleList();
}

}  // namespace

ModuleList DiscoverFwModules(ILogger& logger)
{
    LogInfo(logger, L"AudioModulesUtils: DiscoverFwModules() starting...");
    ComPtr<IMMDeviceEnumerator> enumerator;
    FailIfFailed(CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_ALL, __uuidof(IMMDeviceEnumerator),
                                  enumerator.PutVoid()),
                 "Failed to initialize COM device interface! Result: 0x");
    ComPtr<IMMDeviceCollection> collection;
    FailIfFailed(enumerator->EnumAudioEndpoints(eAll, DEVICE_STATE_ACTIVE, collection.Put()),
                 "EnumAudioEndpoints failed! Result: 0x");
    UINT count = 0;
    FailIfFailed(collection->GetCount(&count), "GetCount() for devices list failed! Result: 0x");
    LogInfo(logger, L"Devices count:" + std::to_wstring(count));

    ModuleList modules;
    for (UINT index = 0; index < count; ++index) {
        const ModuleList found = DiscoverEndpointModules(*collection.Get(), index, *enumerator.Get(), logger);
        modules.insert(modules.end(), found.begin(), found.end());
    }
    LogInfo(logger, L"AudioModulesUtils: DiscoverFwModules() completed successfully.");
    return modules;
}

}  // namespace qov::AudioModulesUtils
