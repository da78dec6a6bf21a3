#include "discovery/ActiveEndpoints.h"

#include "common/ComPtr.h"
#include "common/Failure.h"
#include "common/Logging.h"
#include "common/Owners.h"
#include "discovery/GuidText.h"

#include <mmdeviceapi.h>

namespace qov {

namespace {

GUID ReadAndLogEndpoint(IMMDevice& endpoint, UINT index, ILogger& logger)
{
    const std::wstring number = std::to_wstring(index);

    TaskText deviceId;
    FailIfFailed(endpoint.GetId(deviceId.Put()), "pEndpoint->GetId() failed with status: ");
    ComPtr<IPropertyStore> properties;
    FailIfFailed(endpoint.OpenPropertyStore(STGM_READ, properties.Put()),
                 "pEndpoint->OpenPropertyStore() failed with status: ");

    PropertyValue friendlyName;
    FailIfFailed(properties->GetValue(FriendlyNameKey, friendlyName.Put()), "pProps->GetValue() failed with status: ");
    LogInfo(logger, L"Endpoint #" + number + L": \"" + friendlyName.Text() + L"(" + deviceId.Text() + L")");

    PropertyValue guidText;
    FailIfFailed(properties->GetValue(EndpointGuidKey, guidText.Put()), "pProps->GetValue() failed with status: ");
    LogInfo(logger, L"GUID #" + number + L": " + guidText.Text());
    return TextToGuid(guidText.Text());
}

}  // namespace

std::vector<GUID> GetActiveEndpointGuids(DataFlow flow, ILogger& logger)
{
    ComPtr<IMMDeviceEnumerator> enumerator;
    FailIfFailed(CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_ALL, __uuidof(IMMDeviceEnumerator),
                                  enumerator.PutVoid()),
                 "CoCreateInstance() failed with status: 0x");
    ComPtr<IMMDeviceCollection> collection;
    FailIfFailed(enumerator->EnumAudioEndpoints(static_cast<EDataFlow>(flow), DEVICE_STATE_ACTIVE, collection.Put()),
                 "EnumAudioEndpoints() failed with status: ");
    UINT count = 0;
    FailIfFailed(collection->GetCount(&count), "pCollection->GetCount() failed with status: ");

    std::vector<GUID> guids;
    for (UINT index = 0; index < count; ++index) {
        ComPtr<IMMDevice> endpoint;
        FailIfFailed(collection->Item(index, endpoint.Put()), "pCollection->Item() failed with status: ");
        guids.push_back(ReadAndLogEndpoint(*endpoint.Get(), index, logger));
    }
    return guids;
}

}  // namespace qov
