// The PP API: the private kernel-streaming property set by which an audio driver lists the modules that its firmware
// runs on a pin. Its formats are the driver vendor's.
#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

namespace qov {

// Appends the modules that a pin reports, in the driver's order, as firmware modules of the endpoint (given by its
// AudioEndpointGuid and Flow; its names are read from the registry for every module).
//
// A pin that does not speak version 1 of the PP API, that fails a request, or whose reply does not hold what it
// promises gives nothing, without a message. Throws "Unsupported IAP module type" and what ReadEndpointProperty throws.
void ReadPinModules(const ComPtr<IKsControl>& control, ULONG pinId, const AudioEndpoint& endpoint, ILogger& logger,
                    ModuleList& modules);

}  // namespace qov
