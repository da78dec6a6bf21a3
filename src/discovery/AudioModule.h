// The records of discovery: an audio endpoint, and an audio processing module on it.
#pragma once

#include "common/ComPtr.h"

#include <windows.h>

#include <devicetopology.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qov {

enum class ModuleLocation : std::int32_t { Unknown = 0, FW = 1, APO = 2 };
// The effect slot of a module.
enum class ModuleType : std::int32_t { LFX = 0, GFX = 1, SFX = 2, MFX = 3, EFX = 4 };
// Whether an APO is registered in an effect slot or in the wrapped APO list.
enum class ModuleLevel : std::int32_t { NotWrapped = 0, Wrapped = 1 };
// Numbered as the platform's EDataFlow; None marks an endpoint that has no flow yet.
enum class DataFlow : std::int32_t { Render = 0, Capture = 1, All = 2, None = 3 };

// Display texts; a value that is not in the enumeration gives the empty text.
std::wstring ModuleLocationToText(ModuleLocation location);
std::wstring ModuleTypeToText(ModuleType type);
std::wstring ModuleLevelToText(ModuleLevel level);
std::wstring DataFlowToText(DataFlow flow);

struct AudioEndpoint {
    GUID AudioEndpointGuid{};  // PKEY_AudioEndpoint_GUID, also the name of the endpoint's registry key
    DataFlow Flow = DataFlow::None;
    std::wstring DeviceId;  // both are taken from the endpoint's device path, see ExtractDeviceId
    std::wstring EndpointName;
};

struct AudioModule {
    GUID ModuleGuid{};  // CLSID of an APO; of a firmware module, the GUID that the driver reports
    ModuleLocation Location = ModuleLocation::Unknown;
    ModuleType Type = ModuleType::EFX;
    ModuleLevel Level = ModuleLevel::NotWrapped;
    AudioEndpoint Endpoint;
    ComPtr<IKsControl> KsControl;  // control interface of the filter that reported a firmware module; none for an APO
    ULONG PropertyPinId = 0;       // pin on which a firmware module was reported; 0 for an APO
};

// In the order of discovery; never sorted, duplicates stay.
using ModuleList = std::vector<AudioModule>;

}  // namespace qov
