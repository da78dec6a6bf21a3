// The PP API: the private kernel-streaming property set by which an audio driver lists the modules that its firmware
// runs on a pin. Its formats are the driver vendor's.
#pragma once

#include "ILogger.h"
#include "discovery/AudioModule.h"

namespace qov {

// What one endpoint may cost, far above real drivers, which list some ten modules: the bytes of a reply, and the
// modules of all its pins together. Each module costs a read of the registry.
constexpr ULONG MaxReplySize = 256 * 1024;
constexpr std::size_t MaxEndpointModules = 1024;

// Appends the modules that a pin reports, in the driver's order, as firmware modules of the endpoint (given by its
// AudioEndpointGuid and Flow; its names are read from the registry for every module). `modules` holds those of the
// endpoint's earlier pins. A driver that does not say how many bytes it returns has returned as many as it announced.
//
// A pin that does not speak version 1 of the PP API, that fails a request, whose reply does not hold what it promises,
// or whose reply would pass these bounds gives nothing, without a message: a list is taken whole or not at all, and the
// pins after it are asked all the same. Throws "Unsupported IAP module type" and what ReadEndpointProperty throws.
void ReadPinModules(const ComPtr<IKsControl>& control, ULONG pinId, const AudioEndpoint& endpoint, ILogger& logger,
                    ModuleList& modules);

}  // namespace qov
