#include "RegistryImage.h"

#include "Utf16.h"

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

class WritableKey {
public:
    WritableKey(HKEY parent, const std::wstring& path)
    {
        Check(RegCreateKeyExW(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key_,
                              nullptr),
              "RegCreateKeyExW");
    }
    WritableKey(const WritableKey&) = delete;
    WritableKey& operator=(const WritableKey&) = delete;
    ~WritableKey() { RegCloseKey(key_); }

    [[nodiscard]] HKEY Get() const { return key_; }

    void Write(const RegistryValue& value) const
    {
        if (RegQueryValueExW(key_, value.name.c_str(), nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS)
            throw std::runtime_error("The simulated registry cannot hold the value " + Utf16ToUtf8(value.name) +
                                     " twice: it takes no account of letter case");
        // Windows adds a terminator to a text that lacks one where the unit behind it is NUL: put another one there.
        Bytes data = value.data;
        data.insert(data.end(), 2, 0xFF);
        Check(
            RegSetValueExW(key_, value.name.c_str(), 0, value.type, data.data(), static_cast<DWORD>(value.data.size())),
            "RegSetValueExW");
    }

private:
    HKEY key_ = nullptr;
};

void WriteProperties(const WritableKey& endpointKey, const wchar_t* name,
                     const std::optional<std::vector<RegistryValue>>& values)
{
    if (!values)
        return;
    const WritableKey key(endpointKey.Get(), name);
    for (const RegistryValue& value : *values)
        key.Write(value);
}

void WriteEndpoints(const WritableKey& root, const MachineDescription& machine)
{
    const std::wstring audio = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\MMDevices\\Audio\\";
    const WritableKey render(root.Get(), audio + L"Render");
    const WritableKey capture(root.Get(), audio + L"Capture");
    for (const Endpoint& endpoint : machine.endpoints) {
        if (!endpoint.registered)
            continue;
        const WritableKey& flowKey = endpoint.flow == eCapture ? capture : render;
        const WritableKey key(flowKey.Get(), LowerGuidText(endpoint.guid));
        WriteProperties(key, L"Properties", endpoint.properties);
        WriteProperties(key, L"FxProperties", endpoint.fxProperties);
    }
    for (const std::wstring& name : machine.furtherRenderKeys)
        const WritableKey further(render.Get(), name);
    for (const std::wstring& name : machine.furtherCaptureKeys)
        const WritableKey further(capture.Get(), name);
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

RegistryImage::RegistryImage(const MachineDescription& machine) : keyName_(UniqueKeyName())
{
    try {
        const WritableKey root(HKEY_CURRENT_USER, keyName_);
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
