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
    {"RegOpenKeyW", ObjectKind::Key, ResultKind::WindowsError},
    {"RegOpenKeyExW", ObjectKind::Key, ResultKind::WindowsError},
    {"RegQueryInfoKeyW", ObjectKind::Key, ResultKind::WindowsError},
    {"RegEnumKeyExW", ObjectKind::Key, ResultKind::WindowsError},
    {"RegEnumValueW", ObjectKind::Key, ResultKind::WindowsError},
    {"RegQueryValueExW", ObjectKind::Key, ResultKind::WindowsError},
    {"RegCloseKey", ObjectKind::Key, ResultKind::WindowsError},
    {"VerifyVersionInfoW", ObjectKind::None, ResultKind::WindowsError},
    {"IMMDeviceEnumerator::EnumAudioEndpoints"},
    {"IMMDeviceEnumerator::GetDevice", ObjectKind::Device},
    {"IMMDeviceCollection::GetCount"},
    {"IMMDeviceCollection::Item"},
    {"IMMDevice::Activate", ObjectKind::Device},
    {"IMMDevice::GetId", ObjectKind::Device},
    {"IMMDevice::GetState", ObjectKind::Device},
    {"IMMDevice::OpenPropertyStore", ObjectKind::Endpoint},
    {"IMMDevice::QueryInterface", ObjectKind::Device},
    {"IMMEndpoint::GetDataFlow", ObjectKind::Endpoint},
    {"IPropertyStore::GetValue", ObjectKind::Endpoint},
    {"IDeviceTopology::GetConnector", ObjectKind::Device},
    {"IDeviceTopology::GetConnectorCount", ObjectKind::Device},
    {"IDeviceTopology::GetDeviceId", ObjectKind::Device},
    {"IDeviceTopology::GetSignalPath", ObjectKind::Device},
    {"IPart::Activate", ObjectKind::Part},
    {"IPart::EnumPartsIncoming", ObjectKind::Part},
    {"IPart::EnumPartsOutgoing", ObjectKind::Part},
    {"IPart::GetLocalId", ObjectKind::Part},
    {"IPart::GetPartType", ObjectKind::Part},
    {"IPart::GetTopologyObject", ObjectKind::Part},
    {"IPart::QueryInterface", ObjectKind::Part},
    {"IPartsList::GetCount", ObjectKind::DeviceOrPart},
    {"IPartsList::GetPart", ObjectKind::DeviceOrPart},
    {"IConnector::GetConnectedTo", ObjectKind::Connector},
    {"IConnector::GetConnectorIdConnectedTo", ObjectKind::Connector},
    {"IConnector::GetDeviceIdConnectedTo", ObjectKind::Connector},
    {"IConnector::GetType", ObjectKind::Connector},
    {"IConnector::IsConnected", ObjectKind::Connector},
    {"IConnector::QueryInterface", ObjectKind::Connector},
    {"IAudioInputSelector::SetSelection", ObjectKind::InputSelector},
    {"IAudioOutputSelector::SetSelection", ObjectKind::OutputSelector},
    {"IKsControl::KsProperty", ObjectKind::Filter},
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
