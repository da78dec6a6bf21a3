// The audio endpoints and their property values in the registry, read only.
//
// Windows keeps them under HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\MMDevices\Audio: a key `Render`
// and a key `Capture`, in each one key per endpoint, named by the endpoint's GUID, with the subkeys `Properties` and
// `FxProperties`, whose values are named by the text of their property key.
#pragma once

#include "ILogger.h"
#include "common/Owners.h"
#include "discovery/AudioModule.h"
#include "discovery/GuidText.h"

#include <string>
#include <vector>

namespace qov {

enum class EndpointPropertyKind : std::int32_t { Properties = 0, FxProperties = 1 };

// The value of `Properties` that holds the device path: five fields separated by backslashes, the fourth of them four
// parts separated by '#'.
constexpr wchar_t DevicePathKey[] = L"{233164c8-1b2c-4c7d-bc68-b671687a2567},1";

// The active endpoints that are registered: capture, then render, each in the order of the registry.
std::vector<AudioEndpoint> GetAllAudioEndpoints(ILogger& logger);

// The active endpoints of one flow. Throws "Unsupported endpoint type. Use either 'Capture' or 'Render'.",
// "Unable to open registry key", "Unable to close registry key", and what GetActiveEndpointGuids, TextToGuid and
// ReadEndpointProperty throw.
std::vector<AudioEndpoint> GetAudioEndpoints(DataFlow flow, ILogger& logger);

// The data of one value of an endpoint, found by its AudioEndpointGuid and Flow; empty when the key or the value does
// not exist. REG_SZ: the stored units and one more NUL unit. REG_DWORD and REG_BINARY: as many bytes as are stored.
// Throws what OpenEndpointPropertyKey throws, "Could not read registry value. RegQueryValueEx: 0x" + code, and
// "Unsupported registry value type".
Bytes ReadEndpointProperty(const AudioEndpoint& endpoint, EndpointPropertyKind kind, const std::wstring& valueName,
                           ILogger& logger);

// No key when it does not exist. Throws "StringFromCLSID() call failed", "Unsupported endpoint property type.",
// "Unsupported endpoint data flow.", "Could not read registry value. RegOpenKeyEx: 0x" + code.
RegistryKey OpenEndpointPropertyKey(const AudioEndpoint& endpoint, EndpointPropertyKind kind);

// The second '#' part of the fourth field of a device path; empty for a text of another form.
std::wstring ExtractDeviceId(const std::wstring& devicePath);

// The fifth field of a device path without its last two units (the NUL units that a stored text ends with); empty for
// a text of another form.
std::wstring ExtractEndpointName(const std::wstring& devicePath);

// Sets both from the endpoint's device path, which is read from the registry.
void ReadEndpointIdentity(AudioEndpoint& endpoint, ILogger& logger);

}  // namespace qov
