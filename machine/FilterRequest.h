// What a run asks a filter of the audio driver over IKsControl, and how such a call is recorded.
#pragma once

#include <windows.h>

#include <devicetopology.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace machine {

constexpr GUID AudioEngineSet{0x3a2f82dc, 0x886f, 0x4baa, {0x9e, 0xb4, 0x08, 0x2b, 0x90, 0x25, 0xc5, 0x36}};
constexpr GUID PpApiSet{0xbae9ce37, 0xaa99, 0x4bc7, {0x9b, 0xdf, 0x4c, 0xbf, 0x3d, 0x23, 0xe1, 0xb9}};
constexpr GUID ModuleListSelector{0xc18e2f7e, 0x933d, 0x4965, {0xb7, 0xd1, 0x1e, 0xef, 0x22, 0x8d, 0x2a, 0xf3}};
constexpr ULONG AudioEngineDescriptorId = 6;
constexpr ULONG VersionTestId = 0;
constexpr ULONG ModuleListId = 1;
constexpr ULONG GetFlag = 0x1;
constexpr ULONG GetTopologyFlags = 0x10000001;

// A described filter's result for a request that it does not know.
constexpr HRESULT FilterDoesNotKnow = HRESULT_FROM_WIN32(ERROR_NOT_FOUND);

// A request as the driver reads it from its memory. Only the module list's goes to its end.
struct FilterRequest {
    KSPROPERTY property;
    ULONG target;  // a pin's or a node's number
    ULONG reserved;
    GUID selector;
};
static_assert(sizeof(FilterRequest) == 48);
constexpr ULONG PinRequestSize = 32;

// The arguments of a recorded IKsControl::KsProperty: the bytes of the request in hexadecimal digits and the room for
// the reply in bytes.
std::string FilterRequestText(const void* request, std::size_t size, bool data, ULONG room);

}  // namespace machine
