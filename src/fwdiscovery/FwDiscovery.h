// The modules that the audio device's firmware runs. Nothing in the registry tells of them: the audio driver reports
// them, through a private kernel-streaming property set, on a pin of its filter.
#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

namespace qov::AudioModulesUtils {

// Goes from every active endpoint through the device topology to the software pins of the driver's filter and asks the
// candidate pins for their modules: endpoint by endpoint in the platform's order, within an endpoint by ascending pin
// id, within a pin in the driver's order. Switches the selectors on the way. COM is initialised on this thread.
//
// An endpoint whose topology cannot be walked is left out without a message. Throws, each with the result code in
// hexadecimal behind it: "Failed to initialize COM device interface! Result: 0x", "EnumAudioEndpoints failed! Result:
// 0x", "GetCount() for devices list failed! Result: 0x", "Failed to get device from collection! Result: 0x", "Failed to
// get device id! Result: 0x", "Failed to open device property store! Result: 0x", "Failed to read device GUID! Result:
// 0x", "Failed to convert device GUID! Result: 0x", "Endpoint interface query failed! Result: 0x", "GetDataFlow failed!
// Result: 0x", "Device activation failed! Result: 0x", "GetConnector failed! Result: 0x"; and what ReadPinModules
// throws.
ModuleList DiscoverFwModules(ILogger& logger);

}  // namespace qov::AudioModulesUtils
