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
    "IMMDevice::GetId",
    "IMMDevice::OpenPropertyStore",
    "IPropertyStore::GetValue",
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
    const std::optional<LONG> fault = FaultOf(calls_[record].call);
    calls_[record].result = fault.value_or(0);
    return fault;
}

std::size_t CallMonitor::Begin(std::string_view call, const std::string& object, const std::string& arguments)
{
    assert(IsKnownCall(call));
    calls_.push_back({std::string(call), object, arguments, 0});
    return calls_.size() - 1;
}

std::optional<LONG> CallMonitor::FaultOf(const std::string& call)
{
    const unsigned count = ++counts_[call];
    for (const Fault& fault : faults_)
        if (fault.call == call && fault.occurrence.value_or(count) == count)
            return fault.result;
    return std::nullopt;
}

bool IsWindowsFunction(std::string_view call) { return Contains(WindowsFunctions, call); }

bool IsKnownCall(std::string_view call) { return IsWindowsFunction(call) || Contains(Methods, call); }

bool IsFailureOf(std::string_view call, LONG result)
{
    return call.starts_with("Reg") || call.starts_with("Verify") ? result > 0 : FAILED(result);
}

}  // namespace simulation
