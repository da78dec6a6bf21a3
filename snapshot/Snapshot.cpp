#include "snapshot/Snapshot.h"

#include "common/ComPtr.h"
#include "machine/JsonValues.h"
#include "snapshot/Answers.h"
#include "snapshot/EndpointListing.h"
#include "snapshot/FilterReading.h"
#include "snapshot/RegistryReading.h"
#include "snapshot/TopologySurvey.h"

#include <objbase.h>

#include <algorithm>

namespace snapshot {

namespace {

using qov::ComPtr;

class ComMembership {
public:
    explicit ComMembership(Answers& answers) : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED))
    {
        answers.Keep({"CoInitializeEx"}, result_);
    }
    ComMembership(const ComMembership&) = delete;
    ComMembership& operator=(const ComMembership&) = delete;
    ~ComMembership()
    {
        if (SUCCEEDED(result_))
            CoUninitialize();
    }

private:
    HRESULT result_;
};

// 0, or why Windows does not call itself that version or a later one.
LONG CompareVersion(DWORD major, DWORD minor)
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    version.dwMajorVersion = major;
    version.dwMinorVersion = minor;
    ULONGLONG mask = 0;
    for (const DWORD type : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR})
        mask = VerSetConditionMask(mask, type, VER_GREATER_EQUAL);
    const BOOL reached = VerifyVersionInfoW(&version, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR, mask);
    return reached ? ERROR_SUCCESS : static_cast<LONG>(GetLastError());
}

machine::WindowsVersion ReadVersion(Answers& answers)
{
    constexpr WORD MaxNumber = 999;
    machine::WindowsVersion version;
    if (CompareVersion(1, 0) == ERROR_SUCCESS) {
        for (version = {1, 0}; version.major < MaxNumber && CompareVersion(version.major + 1u, 0) == ERROR_SUCCESS;)
            ++version.major;
        while (version.minor < MaxNumber && CompareVersion(version.major, version.minor + 1u) == ERROR_SUCCESS)
            ++version.minor;
    } else {
        answers.Note(L"Windows does not tell its version");
    }
    // What a run asks for.
    const bool isNew = version.major > 6 || (version.major == 6 && version.minor >= 3);
    answers.Keep({"VerifyVersionInfoW", {}, "6.3", isNew ? ERROR_SUCCESS : ERROR_OLD_WIN_VERSION},
                 CompareVersion(6, 3));
    return version;
}

using KeyNames = std::set<std::wstring, machine::RegistryNameOrder>;

// The keys of the endpoints of one flow.
struct FlowKeys {
    explicit FlowKeys(std::vector<std::optional<std::wstring>> names) : inOrder(std::move(names))
    {
        for (const auto& name : inOrder)
            if (name)
                listed.insert(*name);
    }

    std::vector<std::optional<std::wstring>> inOrder;
    KeyNames listed{};
    KeyNames ofEndpoints{};
};

struct EndpointKeys {
    FlowKeys render;
    FlowKeys capture;
    std::set<std::wstring> takenGuids{};

    FlowKeys& Of(EDataFlow flow) { return flow == eCapture ? capture : render; }
};

// The GUID by which the registry knows the endpoint, or one of its own, or as the last resort a made-up one.
void ChooseGuid(machine::Endpoint& endpoint, EndpointKeys& keys)
{
    std::vector<GUID> guids = GuidsOf(endpoint);
    std::stable_partition(guids.begin(), guids.end(), [&](const GUID& guid) {
        return keys.Of(endpoint.flow).listed.contains(machine::LowerGuidText(guid));
    });
    for (ULONG number = 0;; ++number)
        for (const GUID& guid : number == 0 ? guids : std::vector<GUID>{{0xFFFFFFFF - number, 0, 0, {}}})
            if (keys.takenGuids.insert(machine::LowerGuidText(guid)).second) {
                endpoint.guid = guid;
                return;
            }
}

void ReadRegistry(machine::Endpoint& endpoint, EndpointKeys& keys, Answers& answers)
{
    ChooseGuid(endpoint, keys);
    endpoint.properties = ReadValues(endpoint, L"Properties", answers);
    endpoint.fxProperties = ReadValues(endpoint, L"FxProperties", answers);
    FlowKeys& ofFlow = keys.Of(endpoint.flow);
    const std::wstring name = machine::LowerGuidText(endpoint.guid);
    endpoint.registered = ofFlow.listed.contains(name) || endpoint.properties || endpoint.fxProperties;
    if (endpoint.registered)
        ofFlow.ofEndpoints.insert(name);
}

// Those that belong to no endpoint. A name that is not to be known is that of an endpoint, if it fits in there, or one
// that does.
std::vector<std::wstring> FurtherKeys(const FlowKeys& keys, Answers& answers)
{
    KeyNames further;
    std::wstring previous;
    for (const auto& name : keys.inOrder) {
        if (name) {
            if (!keys.ofEndpoints.contains(*name))
                further.insert(answers.Clean(*name));
            previous = *name;
            continue;
        }
        const auto next = keys.ofEndpoints.upper_bound(previous);
        if (next != keys.ofEndpoints.end() && !keys.listed.contains(*next)) {
            previous = *next;
        } else {
            previous += L" ?";
            further.insert(answers.Clean(previous));
        }
    }
    return {further.begin(), further.end()};
}

void ReadTopologies(IMMDeviceEnumerator& enumerator, const std::vector<FoundEndpoint>& found,
                    machine::MachineDescription& machine, Answers& answers)
{
    TopologySurvey survey(answers);
    FilterReading filters(enumerator, survey, answers);
    std::set<std::wstring> endpointIds;
    for (const auto& [endpoint, device] : found) {
        endpointIds.insert(endpoint.deviceId);
        ComPtr<IDeviceTopology> topology;
        if (device && answers.Put({"IMMDevice::Activate", endpoint.deviceId, "IDeviceTopology"}, topology,
                                  [&device = device](auto& given) {
                                      return device->Activate(__uuidof(IDeviceTopology), CLSCTX_ALL, nullptr,
                                                              given.PutVoid());
                                  }))
            survey.Add(endpoint.deviceId, topology);
    }
    for (const auto& [endpoint, device] : found) {
        const auto ends = survey.Walk(endpoint.deviceId, endpoint.flow);
        if (endpoint.state == DEVICE_STATE_ACTIVE)
            filters.Read(ends, endpoint.flow);
    }
    survey.Settle();
    for (machine::Endpoint& endpoint : machine.endpoints)
        endpoint.topology = survey.Describe(endpoint.deviceId).value_or(endpoint.topology);
    for (const std::wstring& id : survey.DeviceIds())
        if (!endpointIds.contains(id))
            machine.devices.push_back({id, *survey.Describe(id), filters.Describe(id)});
}

}  // namespace

machine::MachineDescription TakeSnapshot()
{
    Answers answers;
    machine::MachineDescription machine;
    machine.windowsVersion = ReadVersion(answers);
    EndpointKeys keys{FlowKeys(ReadEndpointKeys(eRender, answers)), FlowKeys(ReadEndpointKeys(eCapture, answers))};

    const ComMembership com(answers);
    ComPtr<IMMDeviceEnumerator> enumerator;
    if (answers.Put({"CoCreateInstance"}, enumerator, [](auto& given) {
            return CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_ALL, __uuidof(IMMDeviceEnumerator),
                                    given.PutVoid());
        })) {
        const std::vector<FoundEndpoint> found = ListEndpoints(*enumerator.Get(), answers);
        for (const FoundEndpoint& endpoint : found) {
            machine.endpoints.push_back(endpoint.endpoint);
            ReadRegistry(machine.endpoints.back(), keys, answers);
        }
        ReadTopologies(*enumerator.Get(), found, machine, answers);
    }
    machine.furtherRenderKeys = FurtherKeys(keys.render, answers);
    machine.furtherCaptureKeys = FurtherKeys(keys.capture, answers);
    answers.MoveInto(machine);
    return machine;
}

}  // namespace snapshot
