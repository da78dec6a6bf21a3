#include "host/review/ReadValues.h"

#include "host/review/DiscoveryReport.h"
#include "host/review/ShownText.h"
#include "machine/Utf16.h"

#include <objbase.h>

namespace host {

namespace {

constexpr std::string_view WrappedList = "wrapped APO list";
constexpr ReadValue ReadValues[] = {
    {false, "{233164c8-1b2c-4c7d-bc68-b671687a2567},1", "device path"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},1", "LFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},2", "GFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},5", "SFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},6", "MFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},7", "EFX effect"},
    {true, "{bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5", WrappedList},
};

std::wstring UnitsOf(const machine::RegistryValue& value)
{
    std::wstring text;
    for (std::size_t index = 0; index + 1 < value.data.size(); index += 2)
        text += static_cast<wchar_t>(value.data[index] | (value.data[index + 1] << 8));
    return text;
}

}  // namespace

std::string ReadValue::Title() const
{
    return std::string(effect ? "FxProperties" : "Properties") + " value " + std::string(name) + " (" +
           std::string(words) + ")";
}

bool ReadValue::IsWrappedList() const { return words == WrappedList; }

void ForEachReadValue(
    const machine::MachineDescription& machine,
    const std::function<void(const machine::Endpoint&, const ReadValue&, const machine::RegistryValue&)>& take)
{
    for (const machine::Endpoint& endpoint : machine.endpoints)
        for (const ReadValue& read : ReadValues) {
            const auto& values = read.effect ? endpoint.fxProperties : endpoint.properties;
            if (endpoint.state != DEVICE_STATE_ACTIVE || !endpoint.registered || !values)
                continue;
            for (const machine::RegistryValue& value : *values)
                if (LowerCase(machine::Utf16ToUtf8(value.name)) == read.name)
                    take(endpoint, read, value);
        }
}

std::string TextOf(const machine::RegistryValue& value)
{
    const std::wstring text = UnitsOf(value);
    return machine::Utf16ToUtf8(text.substr(0, text.empty() ? 0 : text.size() - 1));
}

bool HoldsOtherThanGuid(const machine::RegistryValue& value)
{
    const std::wstring units = UnitsOf(value);
    const std::wstring text = units.substr(0, units.find(L'\0'));
    return !text.empty() && !IsGuid(text);
}

std::string TitleOf(const machine::Endpoint& endpoint)
{
    const std::string name = machine::Utf16ToUtf8(endpoint.friendlyName);
    return Harmless(name.empty() ? machine::Utf16ToUtf8(endpoint.deviceId) : name);
}

bool IsGuid(const std::wstring& text)
{
    GUID guid{};
    return SUCCEEDED(CLSIDFromString(text.c_str(), &guid));
}

}  // namespace host
