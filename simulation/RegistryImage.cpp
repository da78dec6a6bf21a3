#include "simulation/RegistryImage.h"

#include "common/Owners.h"
#include "machine/Utf16.h"
#include "simulation/UnusableMachine.h"

#include <random>
#include <stdexcept>
#include <string>

namespace simulation {

namespace {

void Check(LSTATUS result, const char* function)
{
    if (result != ERROR_SUCCESS)
        throw std::runtime_error(std::string("The simulated registry cannot be made: ") + function + " gave " +
                                 std::to_string(result));
}

qov::RegistryKey CreateKey(HKEY parent, const std::wstring& path)
{
    qov::RegistryKey key;
    Check(RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, key.Put(),
                          nullptr),
          "RegCreateKeyExW");
    return key;
}

void WriteValue(const qov::RegistryKey& key, const machine::RegistryValue& value)
{
    if (RegQueryValueExW(key.Get(), value.name.c_str(), nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS)
        throw UnusableMachine("The simulated registry cannot hold the value " + machine::Utf16ToUtf8(value.name) +
                              " twice: it takes no account of letter case");
    // Windows adds a terminator to a text that lacks one where the unit behind it is NUL: put another one there.
    machine::Bytes data = value.data;
    data.insert(data.end(), 2, 0xFF);
    Check(RegSetValueExW(key.Get(), value.name.c_str(), 0, value.type, data.data(),
                         static_cast<DWORD>(value.data.size())),
          "RegSetValueExW");
}

void WriteProperties(const qov::RegistryKey& endpointKey, const wchar_t* name,
                     const std::optional<std::vector<machine::RegistryValue>>& values)
{
    if (!values)
        return;
    const qov::RegistryKey key = CreateKey(endpointKey.Get(), name);
    for (const machine::RegistryValue& value : *values)
        WriteValue(key, value);
}

void WriteEndpoints(const qov::RegistryKey& root, const machine::MachineDescription& machine)
{
    const qov::RegistryKey render = CreateKey(root.Get(), machine::EndpointsKeyPath(eRender));
    const qov::RegistryKey capture = CreateKey(root.Get(), machine::EndpointsKeyPath(eCapture));
    for (const machine::Endpoint& endpoint : machine.endpoints) {
        if (!endpoint.registered)
            continue;
        const qov::RegistryKey& flowKey = endpoint.flow == eCapture ? capture : render;
        const qov::RegistryKey key = CreateKey(flowKey.Get(), machine::LowerGuidText(endpoint.guid));
        WriteProperties(key, L"Properties", endpoint.properties);
        WriteProperties(key, L"FxProperties", endpoint.fxProperties);
    }
    for (const std::wstring& name : machine.furtherRenderKeys)
        const qov::RegistryKey further = CreateKey(render.Get(), name);
    for (const std::wstring& name : machine.furtherCaptureKeys)
        const qov::RegistryKey further = CreateKey(capture.Get(), name);
}

std::wstring UniqueKeyName()
{
    std::random_device random;
    std::wstring name = L"QovXmlSimulation";
    for (int part = 0; part < 4; ++part)
        name += L"-" + std::to_wstring(random());
    return name;
}

}  // namespace

RegistryImage::RegistryImage(const machine::MachineDescription& machine) : keyName_(UniqueKeyName())
{
    try {
        const qov::RegistryKey root = CreateKey(HKEY_CURRENT_USER, keyName_);
        WriteEndpoints(root, machine);
        Check(RegOverridePredefKey(HKEY_LOCAL_MACHINE, root.Get()), "RegOverridePredefKey");
    } catch (...) {
        RegDeleteTreeW(HKEY_CURRENT_USER, keyName_.c_str());
        throw;
    }
}

RegistryImage::~RegistryImage()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, keyName_.c_str());
}

}  // namespace simulation
