// A simulated machine as plain data. Wide texts are UTF-16.
#pragma once

#include "machine/TopologyDescription.h"

#include <windows.h>

#include <mmdeviceapi.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace machine {

struct WindowsVersion {
    WORD major = 10;
    WORD minor = 0;

    bool operator==(const WindowsVersion&) const = default;
};

// A registry value: its data exactly as it is stored.
struct RegistryValue {
    std::wstring name;
    DWORD type = REG_NONE;
    Bytes data;

    bool operator==(const RegistryValue&) const = default;
};

// UTF-16 units, low byte first, with that many NUL units behind them.
Bytes TextData(const std::wstring& text, unsigned terminators = 1);

// 38 characters in braces, in lower case as the registry names keys, or in upper case as properties hold it.
std::wstring LowerGuidText(const GUID& guid);
std::wstring UpperGuidText(const GUID& guid);

// What an endpoint has whose topology is not described: one connector, connected to nothing.
TopologyDescription UnconnectedTopology();

struct Endpoint {
    GUID guid{};
    EDataFlow flow = eRender;
    DWORD state = DEVICE_STATE_ACTIVE;
    std::wstring deviceId;  // the platform's id of the endpoint device
    std::wstring friendlyName;
    std::wstring guidPropertyText;  // what PKEY_AudioEndpoint_GUID holds
    TopologyDescription topology = UnconnectedTopology();
    bool registered = true;                                  // whether it has a key in the registry
    std::optional<std::vector<RegistryValue>> properties;    // none: there is no `Properties` key
    std::optional<std::vector<RegistryValue>> fxProperties;  // none: there is no `FxProperties` key

    bool operator==(const Endpoint&) const = default;
};

// The id that Windows would give the endpoint's device.
std::wstring DefaultDeviceId(const Endpoint& endpoint);

// The paths below HKEY_LOCAL_MACHINE by which a run opens the registry keys of the endpoints of a flow, and of those of
// one endpoint `Properties` or `FxProperties`.
std::wstring EndpointsKeyPath(EDataFlow flow);
std::wstring PropertiesKeyPath(const Endpoint& endpoint, const std::wstring& name);

// Makes a call give another result: a failure takes the place of the whole call; a success code other than S_OK is
// given by a call that does its work.
struct Fault {
    std::string call;                      // one of PlatformCalls()
    std::optional<unsigned> occurrence{};  // counts the calls that the rest speaks of from 1; none: every call
    LONG result = 0;
    std::string object{};  // a device id, a part's global id or the path of a registry key, in UTF-8; empty: any object
    std::string arguments{};  // as the call is recorded with them; empty: any

    bool operator==(const Fault&) const = default;
};

struct MachineDescription {
    WindowsVersion windowsVersion;
    std::vector<Endpoint> endpoints;  // in the order in which the device enumerator lists them
    std::vector<AdapterDevice> devices;
    std::vector<std::wstring> furtherRenderKeys;  // subkeys of the endpoint keys that belong to no endpoint
    std::vector<std::wstring> furtherCaptureKeys;
    std::vector<Fault> faults;
    std::vector<std::wstring> notes;  // remarks for people

    // The topology of an endpoint or adapter device; null where there is no such device.
    [[nodiscard]] const TopologyDescription* FindTopology(const std::wstring& deviceId) const;
    bool operator==(const MachineDescription&) const = default;
};

}  // namespace machine
