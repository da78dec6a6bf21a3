#include "machine/PlatformCalls.h"

#include <algorithm>
#include <iterator>

namespace machine {

namespace {

constexpr PlatformCall Calls[] = {
    {"CoInitializeEx"},
    {"CoCreateInstance"},
    {"CLSIDFromString"},
    {"StringFromCLSID"},
    {"RegOpenKeyW", ResultKind::WindowsError},
    {"RegOpenKeyExW", ResultKind::WindowsError},
    {"RegQueryInfoKeyW", ResultKind::WindowsError},
    {"RegEnumKeyExW", ResultKind::WindowsError},
    {"RegQueryValueExW", ResultKind::WindowsError},
    {"RegCloseKey", ResultKind::WindowsError},
    {"VerifyVersionInfoW", ResultKind::WindowsError},
    {"IMMDeviceEnumerator::EnumAudioEndpoints"},
    {"IMMDeviceEnumerator::GetDevice"},
    {"IMMDeviceCollection::GetCount"},
    {"IMMDeviceCollection::Item"},
    {"IMMDevice::Activate"},
    {"IMMDevice::GetId"},
    {"IMMDevice::OpenPropertyStore"},
    {"IMMDevice::QueryInterface"},
    {"IMMEndpoint::GetDataFlow"},
    {"IPropertyStore::GetValue"},
    {"IDeviceTopology::GetConnector"},
    {"IDeviceTopology::GetConnectorCount"},
    {"IDeviceTopology::GetDeviceId"},
    {"IDeviceTopology::GetSignalPath"},
    {"IPart::Activate"},
    {"IPart::EnumPartsIncoming"},
    {"IPart::EnumPartsOutgoing"},
    {"IPart::GetLocalId"},
    {"IPart::GetPartType"},
    {"IPart::GetTopologyObject"},
    {"IPart::QueryInterface"},
    {"IPartsList::GetCount"},
    {"IPartsList::GetPart"},
    {"IConnector::GetConnectedTo"},
    {"IConnector::GetConnectorIdConnectedTo"},
    {"IConnector::GetDeviceIdConnectedTo"},
    {"IConnector::GetType"},
    {"IConnector::IsConnected"},
    {"IConnector::QueryInterface"},
    {"IAudioInputSelector::SetSelection"},
    {"IAudioOutputSelector::SetSelection"},
    {"IKsControl::KsProperty"},
};

}  // namespace

std::span<const PlatformCall> PlatformCalls() { return Calls; }

const PlatformCall* FindPlatformCall(std::string_view name)
{
    const auto* const found = std::find_if(std::begin(Calls), std::end(Calls),
                                           [name](const PlatformCall& call) { return call.name == name; });
    return found == std::end(Calls) ? nullptr : found;
}

}  // namespace machine
