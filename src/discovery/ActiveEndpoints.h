#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

#include <windows.h>

#include <propsys.h>

#include <vector>

namespace qov {

// The platform's PKEY_Device_FriendlyName and PKEY_AudioEndpoint_GUID.
constexpr PROPERTYKEY FriendlyNameKey{{0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}},
                                      14};
constexpr PROPERTYKEY EndpointGuidKey{{0x1da5d803, 0xd492, 0x4edd, {0x8c, 0x23, 0xe0, 0xc0, 0xff, 0xee, 0x7f, 0x0e}},
                                      4};

// The GUIDs of the active endpoints of a flow, in the order in which the platform lists them. Logs each endpoint with
// its friendly name, its device id and its GUID text. COM is initialised on this thread.
//
// Throws, each with the result code in hexadecimal behind it: "CoCreateInstance() failed with status: 0x",
// "EnumAudioEndpoints() failed with status: ", "pCollection->GetCount() failed with status: ",
// "pCollection->Item() failed with status: ", "pEndpoint->GetId() failed with status: ",
// "pEndpoint->OpenPropertyStore() failed with status: ", "pProps->GetValue() failed with status: "; and what
// TextToGuid throws.
std::vector<GUID> GetActiveEndpointGuids(DataFlow flow, ILogger& logger);

}  // namespace qov
