#include "discovery/EndpointRegistry.h"

#include "common/Failure.h"
#include "common/Logging.h"
#include "common/Text.h"
#include "discovery/ActiveEndpoints.h"

#include <algorithm>
#include <cstring>

namespace qov {

namespace {

constexpr wchar_t RenderEndpointsPath[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\MMDevices\\Audio\\Render";
constexpr wchar_t CaptureEndpointsPath[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\MMDevices\\Audio\\Capture";

constexpr DWORD ClassNameLength = 260;
constexpr DWORD KeyNameLength = 255;
constexpr std::size_t ListedBinaryBytes = 33;

// The path of the endpoints of a flow; null for a flow other than render and capture.
const wchar_t* EndpointsPath(DataFlow flow)
{
    switch (flow) {
        case DataFlow::Render:
            return RenderEndpointsPath;
        case DataFlow::Capture:
            return CaptureEndpointsPath;
        default:
            return nullptr;
    }
}

const wchar_t* SubkeyPath(EndpointPropertyKind kind)
{
    switch (kind) {
        case EndpointPropertyKind::Properties:
            return L"\\Properties";
        case EndpointPropertyKind::FxProperties:
            return L"\\FxProperties";
    }
    Fail("Unsupported endpoint property type.");
}

// The number of subkeys; 0 when the key does not tell.
DWORD SubkeyCount(const RegistryKey& key)
{
    wchar_t className[ClassNameLength] = {};
    DWORD classNameLength = ClassNameLength;
    DWORD count = 0;
    (void)RegQueryInfoKeyW(key.Get(), className, &classNameLength, nullptr, &count, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr, nullptr);
    return count;
}

constexpr char QueryFailed[] = "Could not read registry value. RegQueryValueEx: 0x";

// Reads up to `size` bytes of a value; what the value does not fill stays zero.
Bytes ReadValue(const RegistryKey& key, const std::wstring& name, DWORD size)
{
    // A null data pointer would ask for the size alone, so there is always a byte to point at.
    Bytes data(std::max<std::size_t>(size, 1), 0);
    DWORD room = size;
    const LSTATUS result = RegQueryValueExW(key.Get(), name.c_str(), nullptr, nullptr, data.data(), &room);
    if (result != ERROR_SUCCESS)
        FailWithCode(QueryFailed, result);
    data.resize(size);
    return data;
}

Bytes ReadTextValue(const RegistryKey& key, const std::wstring& name, DWORD size, ILogger& logger)
{
    const std::wstring text = BytesToText(ReadValue(key, name, size));
    LogInfo(logger, L"[REG_SZ] Registry key value name: " + name + L"\nValue get: " +
                        text.substr(0, text.empty() ? 0 : text.size() - 1));
    return TextToBytes(text);
}

Bytes ReadNumberValue(const RegistryKey& key, const std::wstring& name, DWORD size, ILogger& logger)
{
    Bytes data = ReadValue(key, name, sizeof(DWORD));
    std::uint32_t value = 0;
    for (std::size_t index = data.size(); index-- > 0;)
        value = (value << 8) | data[index];
    LogInfo(logger, L"[REG_DWORD] Registry key value name: " + name + L"\nValue get: " + std::to_wstring(value) +
                        L" (0x" + Widen(HexText(value)) + L")\nValue size in bytes: " + std::to_wstring(data.size()));
    data.resize(size);
    return data;
}

Bytes ReadBinaryValue(const RegistryKey& key, const std::wstring& name, DWORD size, ILogger& logger)
{
    Bytes data = ReadValue(key, name, size);
    std::wstring message = L"[REG_BINARY] Registry key value name: " + name + L"\nBinary value get:\n";
    for (std::size_t index = 0; index < std::min(data.size(), ListedBinaryBytes); ++index)
        message += L"0x" + Widen(HexText(data[index])) + L" ";
    if (data.size() >= ListedBinaryBytes)
        message += L"...\n";
    LogInfo(logger, message + L"Value size in bytes: " + std::to_wstring(data.size()) + L"\n");
    return data;
}

constexpr std::size_t DevicePathFields = 5;

}  // namespace

std::vector<AudioEndpoint> GetAllAudioEndpoints(ILogger& logger)
{
    LogInfo(logger, L"Calling GetAudioEndpoints() for CAPTURE path...");
    std::vector<AudioEndpoint> endpoints = GetAudioEndpoints(DataFlow::Capture, logger);
    LogInfo(logger, L"Calling GetAudioEndpoints() for RENDER path...");
    const std::vector<AudioEndpoint> renderEndpoints = GetAudioEndpoints(DataFlow::Render, logger);
    endpoints.insert(endpoints.end(), renderEndpoints.begin(), renderEndpoints.end());
    return endpoints;
}

std::vector<AudioEndpoint> GetAudioEndpoints(DataFlow flow, ILogger& logger)
{
    const std::vector<GUID> activeGuids = GetActiveEndpointGuids(flow, logger);
    const wchar_t* const path = EndpointsPath(flow);
    if (path == nullptr)
        Fail("Unsupported endpoint type. Use either 'Capture' or 'Render'.");
    RegistryKey key;
    if (RegOpenKeyW(HKEY_LOCAL_MACHINE, path, key.Put()) != ERROR_SUCCESS)
        Fail("Unable to open registry key");

    std::vector<AudioEndpoint> endpoints;
    const DWORD count = SubkeyCount(key);
    for (DWORD index = 0; index < count; ++index) {
        wchar_t name[KeyNameLength] = {};
        DWORD nameLength = KeyNameLength;
        if (RegEnumKeyExW(key.Get(), index, name, &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            continue;
        AudioEndpoint endpoint;
        endpoint.AudioEndpointGuid = TextToGuid(name);
        if (std::find(activeGuids.begin(), activeGuids.end(), endpoint.AudioEndpointGuid) == activeGuids.end())
            continue;
        endpoint.Flow = flow;
        ReadEndpointIdentity(endpoint, logger);
        endpoints.push_back(std::move(endpoint));
    }
    if (key.Close() != ERROR_SUCCESS)
        Fail("Unable to close registry key");
    return endpoints;
}

Bytes ReadEndpointProperty(const AudioEndpoint& endpoint, EndpointPropertyKind kind, const std::wstring& valueName,
                           ILogger& logger)
{
    const RegistryKey key = OpenEndpointPropertyKey(endpoint, kind);
    if (!key)
        return {};
    DWORD type = REG_NONE;
    DWORD size = 0;
    const LSTATUS result = RegQueryValueExW(key.Get(), valueName.c_str(), nullptr, &type, nullptr, &size);
    if (result == ERROR_FILE_NOT_FOUND)
        return {};
    if (result != ERROR_SUCCESS)
        FailWithCode(QueryFailed, result);
    switch (type) {
        case REG_SZ:
            return ReadTextValue(key, valueName, size, logger);
        case REG_DWORD:
            return ReadNumberValue(key, valueName, size, logger);
        case REG_BINARY:
            return ReadBinaryValue(key, valueName, size, logger);
        default:
            Fail("Unsupported registry value type");
    }
}

RegistryKey OpenEndpointPropertyKey(const AudioEndpoint& endpoint, EndpointPropertyKind kind)
{
    TaskText guidText;
    if (FAILED(StringFromCLSID(endpoint.AudioEndpointGuid, guidText.Put())))
        Fail("StringFromCLSID() call failed");
    const wchar_t* const suffix = SubkeyPath(kind);
    const wchar_t* const endpointsPath = EndpointsPath(endpoint.Flow);
    if (endpointsPath == nullptr)
        Fail("Unsupported endpoint data flow.");

    RegistryKey key;
    const std::wstring path = endpointsPath + (L"\\" + guidText.Text()) + suffix;
    const LSTATUS result = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, key.Put());
    if (result == ERROR_FILE_NOT_FOUND)
        return {};
    if (result != ERROR_SUCCESS)
        FailWithCode("Could not read registry value. RegOpenKeyEx: 0x", result);
    return key;
}

std::wstring ExtractDeviceId(const std::wstring& devicePath)
{
    const std::vector<std::wstring> fields = SplitText(devicePath, L'\\');
    if (fields.size() != DevicePathFields)
        return {};
    const std::vector<std::wstring> parts = SplitText(fields[3], L'#');
    return parts.size() == 4 ? parts[1] : std::wstring();
}

std::wstring ExtractEndpointName(const std::wstring& devicePath)
{
    const std::vector<std::wstring> fields = SplitText(devicePath, L'\\');
    if (fields.size() != DevicePathFields)
        return {};
    const std::wstring& name = fields[4];
    return name.size() < 2 ? name : name.substr(0, name.size() - 2);
}

void ReadEndpointIdentity(AudioEndpoint& endpoint, ILogger& logger)
{
    const std::wstring devicePath =
        BytesToText(ReadEndpointProperty(endpoint, EndpointPropertyKind::Properties, DevicePathKey, logger));
    endpoint.DeviceId = ExtractDeviceId(devicePath);
    endpoint.EndpointName = ExtractEndpointName(devicePath);
}

}  // namespace qov
