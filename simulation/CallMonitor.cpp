#include "CallMonitor.h"

#include <algorithm>
#include <cassert>
#include <iterator>

namespace simulation {

namespace {

constexpr std::string_view WindowsFunctions[] = {
    "CoInitializeEx",   "CoCreateInstance", "CLSIDFromString",    "StringFromCLSID",
    "RegOpenKeyW",      "RegOpenKeyExW",    "RegQueryInfoKeyW",   "RegEnumKeyExW",
    "RegQueryValueExW", "RegCloseKey",      "VerifyVersionInfoW",
};

constexpr std::string_view Methods[] = {
    "IMMDeviceEnumerator::EnumAudioEndpoints",
    "IMMDeviceCollection::GetCount",
    "IMMDeviceCollection::Item",
    "IMMDeviceEnumerator::GetDevice",
    "IMMDevice::Activate",
    "IMMDevice::GetId",
    "IMMDevice::OpenPropertyStore",
    "IMMDevice::QueryInterface",
    "IMMEndpoint::GetDataFlow",
    "IPropertyStore::GetValue",
    "IDeviceTopology::GetConnector",
    "IDeviceTopology::GetConnectorCount",
    "IDeviceTopology::GetDeviceId",
    "IDeviceTopology::GetSignalPath",
    "IPart::Activate",
    "IPart::EnumPartsIncoming",
    "IPart::EnumPartsOutgoing",
    "IPart::GetLocalId",
    "IPart::GetPartType",
    "IPart::GetTopologyObject",
    "IPart::QueryInterface",
    "IPartsList::GetCount",
    "IPartsList::GetPart",
    "IConnector::GetConnectedTo",
    "IConnector::GetConnectorIdConnectedTo",
    "IConnector::GetDeviceIdConnectedTo",
    "IConnector::GetType",
    "IConnector::IsConnected",
    "IConnector::QueryInterface",
    "IAudioInputSelector::SetSelection",
    "IAudioOutputSelector::SetSelection",
    "IKsControl::KsProperty",
};

template <class Names>
bool Contains(const Names& names, std::string_view call)
{
    return std::find(std::begin(names), std::end(names), call) != std::end(names);
}

}  // namespace

std::optional<LONG> CallMonitor::EnterFunction(std::string_view call)
{
    const std::size_t record = Begin(call, {}, {});
    const std::optional<LONG> fault = FaultOf(calls_[record]);
    calls_[record].result = fault.value_or(0);
    return fault;
}

std::size_t CallMonitor::Begin(std::string_view call, const std::string& object, const std::string& arguments)
{
    assert(IsKnownCall(call));
    calls_.push_back({std::string(call), object, arguments, 0});
    return calls_.size() - 1;
}

std::optional<LONG> CallMonitor::FaultOf(const CallRecord& record) const
{
    for (const Fault& fault : faults_) {
        if (fault.call != record.call || (!fault.object.empty() && fault.object != record.object))
            continue;
        const auto count = std::count_if(calls_.begin(), calls_.end(), [&](const CallRecord& earlier) {
            return earlier.call == fault.call && (fault.object.empty() || earlier.object == fault.object);
        });
        if (!fault.occurrence || count == static_cast<std::ptrdiff_t>(*fault.occurrence))
            return fault.result;
    }
    return std::nullopt;
}

bool IsWindowsFunction(std::string_view call) { return Contains(WindowsFunctions, call); }

bool IsKnownCall(std::string_view call) { return IsWindowsFunction(call) || Contains(Methods, call); }

bool IsFailureOf(std::string_view call, LONG result)
{
    return call.starts_with("Reg") || call.starts_with("Verify") ? result > 0 : FAILED(result);
}

}  // namespace simulation
