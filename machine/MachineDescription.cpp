#include "machine/MachineDescription.h"

#include "machine/Utf16.h"

#include <cstdio>

namespace machine {

namespace {

std::wstring FormatGuid(const GUID& guid, const char* format)
{
    char text[39];
    const auto* const last = guid.Data4;
    std::snprintf(text, sizeof(text), format, static_cast<unsigned int>(guid.Data1),
                  static_cast<unsigned int>(guid.Data2), static_cast<unsigned int>(guid.Data3), last[0], last[1],
                  last[2], last[3], last[4], last[5], last[6], last[7]);
    return Utf8ToUtf16(text);
}

}  // namespace

Bytes TextData(const std::wstring& text, unsigned terminators)
{
    Bytes data;
    for (const wchar_t unit : text + std::wstring(terminators, L'\0')) {
        data.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        data.push_back(static_cast<std::uint8_t>((unit >> 8) & 0xFF));
    }
    return data;
}

TopologyDescription UnconnectedTopology()
{
    PartDescription connector;
    connector.connectorType = Physical_External;
    return {{connector}, {}};
}

std::wstring LowerGuidText(const GUID& guid)
{
    return FormatGuid(guid, "{%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x}");
}

std::wstring UpperGuidText(const GUID& guid)
{
    return FormatGuid(guid, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}");
}

const TopologyDescription* MachineDescription::FindTopology(const std::wstring& deviceId) const
{
    for (const Endpoint& endpoint : endpoints)
        if (endpoint.deviceId == deviceId)
            return &endpoint.topology;
    for (const AdapterDevice& device : devices)
        if (device.id == deviceId)
            return &device.topology;
    return nullptr;
}

std::wstring DefaultDeviceId(const Endpoint& endpoint)
{
    return (endpoint.flow == eCapture ? L"{0.0.1.00000000}." : L"{0.0.0.00000000}.") + LowerGuidText(endpoint.guid);
}

std::wstring EndpointsKeyPath(EDataFlow flow)
{
    return std::wstring(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\MMDevices\\Audio\\") +
           (flow == eCapture ? L"Capture" : L"Render");
}

std::wstring PropertiesKeyPath(const Endpoint& endpoint, const std::wstring& name)
{
    return EndpointsKeyPath(endpoint.flow) + L"\\" + UpperGuidText(endpoint.guid) + L"\\" + name;
}

}  // namespace machine
