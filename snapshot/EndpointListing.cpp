#include "snapshot/EndpointListing.h"

#include "common/Owners.h"
#include "machine/Utf16.h"

#include <propsys.h>

#include <algorithm>
#include <set>
#include <string>

namespace snapshot {

namespace {

using qov::ComPtr;

// The platform's PKEY_Device_FriendlyName and PKEY_AudioEndpoint_GUID.
constexpr PROPERTYKEY FriendlyNameKey{{0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}},
                                      14};
constexpr PROPERTYKEY EndpointGuidKey{{0x1da5d803, 0xd492, 0x4edd, {0x8c, 0x23, 0xe0, 0xc0, 0xff, 0xee, 0x7f, 0x0e}},
                                      4};
constexpr UINT MaxEndpoints = 4096;

struct ListedDevice {
    ComPtr<IMMDevice> device;  // null: the collection did not give it
    Answer<std::wstring> own;  // what it says of its id
    std::wstring id;           // empty: not to be known
};

// The id; where it is refused, the one that the device's topology has.
void ReadId(ListedDevice& listed, Answers& answers)
{
    IMMDevice& device = *listed.device.Get();
    listed.own = Answers::Twice<std::wstring>(TextOf([&](LPWSTR* text) { return device.GetId(text); }));
    listed.id = answers.Clean(listed.own.value);
    ComPtr<IDeviceTopology> topology;
    if (SUCCEEDED(listed.own.result) ||
        FAILED(device.Activate(__uuidof(IDeviceTopology), CLSCTX_ALL, nullptr, topology.PutVoid())))
        return;
    std::wstring id;
    (void)TextOf([&](LPWSTR* text) { return topology->GetDeviceId(text); })(id);
    listed.id = answers.Clean(id);
}

// What the collection itself says can be told of one list alone: it is recorded of that on which the run's walk goes.
std::vector<ListedDevice> List(IMMDeviceEnumerator& enumerator, EDataFlow flow, DWORD states, Answers& answers)
{
    const bool walked = flow == eAll && states == DEVICE_STATE_ACTIVE;
    const std::string arguments = std::to_string(flow) + ", " + std::to_string(states);
    const auto keep = [&](const Question& question, const auto& answer) {
        if (walked)
            return answers.Keep(question, answer);
        if (FAILED(answer.result))
            answers.Note(machine::Utf8ToUtf16(question.call + " (" + question.arguments + ") of the endpoints " +
                                              arguments + " gave " + std::to_string(answer.result)));
        return SUCCEEDED(answer.result);
    };
    ComPtr<IMMDeviceCollection> collection;
    if (!answers.Put({"IMMDeviceEnumerator::EnumAudioEndpoints", {}, arguments}, collection,
                     [&](auto& given) { return enumerator.EnumAudioEndpoints(flow, states, given.Put()); }))
        return {};
    const auto count = Answers::Twice<UINT>([&](UINT& number) { return collection->GetCount(&number); });
    if (!keep({"IMMDeviceCollection::GetCount"}, count))
        return {};
    std::vector<ListedDevice> devices;
    for (UINT index = 0; index < std::min(count.value, MaxEndpoints); ++index) {
        auto device = Answers::Twice<ComPtr<IMMDevice>>(
            [&](ComPtr<IMMDevice>& given) { return collection->Item(index, given.Put()); });
        devices.emplace_back();
        if (!keep({"IMMDeviceCollection::Item", {}, std::to_string(index)}, device))
            continue;
        devices.back().device = std::move(device.value);
        ReadId(devices.back(), answers);
    }
    return devices;
}

bool Holds(const std::vector<ListedDevice>& devices, const std::wstring& id)
{
    return std::any_of(devices.begin(), devices.end(), [&](const ListedDevice& other) { return other.id == id; });
}

// All, with the active ones in the order in which they are listed alone, which is the order of a run.
std::vector<ListedDevice> Merge(const std::vector<ListedDevice>& active, const std::vector<ListedDevice>& all)
{
    std::vector<ListedDevice> merged;
    auto next = active.begin();
    for (const ListedDevice& device : all) {
        if (device.id.empty())
            continue;
        if (!Holds(active, device.id)) {
            merged.push_back(device);
            continue;
        }
        while (next != active.end() && next->id.empty())
            merged.push_back(*next++);
        if (next != active.end())
            merged.push_back(*next++);
    }
    merged.insert(merged.end(), next, active.end());
    return merged;
}

// Active is what is listed as such.
DWORD StateOf(IMMDevice& device, const std::wstring& id, bool active, Answers& answers)
{
    DWORD state = DEVICE_STATE_NOTPRESENT;
    answers.Put({"IMMDevice::GetState", id}, state, [&](DWORD& given) { return device.GetState(&given); });
    const bool possible =
        active ? state == DEVICE_STATE_ACTIVE
               : state == DEVICE_STATE_DISABLED || state == DEVICE_STATE_NOTPRESENT || state == DEVICE_STATE_UNPLUGGED;
    if (!possible)
        answers.Note(L"The endpoint \"" + id + L"\" says that it is in state " + std::to_wstring(state) +
                     L", but is listed otherwise");
    return active ? DEVICE_STATE_ACTIVE : possible ? state : DEVICE_STATE_NOTPRESENT;
}

EDataFlow FlowOf(const ListedDevice& listed, bool listedAsCapture, Answers& answers)
{
    EDataFlow flow = listedAsCapture || listed.id.starts_with(L"{0.0.1.") ? eCapture : eRender;
    ComPtr<IMMEndpoint> endpoint;
    if (answers.Put({"IMMDevice::QueryInterface", listed.id}, endpoint,
                    [&](auto& given) { return listed.device.QueryInto(given); }))
        answers.Put({"IMMEndpoint::GetDataFlow", listed.id}, flow,
                    [&](EDataFlow& given) { return endpoint->GetDataFlow(&given); });
    return flow == eCapture ? eCapture : eRender;
}

void ReadProperties(IMMDevice& device, machine::Endpoint& endpoint, Answers& answers)
{
    const std::wstring& id = endpoint.deviceId;
    ComPtr<IPropertyStore> store;
    if (!answers.Put({"IMMDevice::OpenPropertyStore", id, std::to_string(STGM_READ)}, store,
                     [&](auto& given) { return device.OpenPropertyStore(STGM_READ, given.Put()); }))
        return;
    for (const auto& [key, text] :
         {std::pair(FriendlyNameKey, &endpoint.friendlyName), std::pair(EndpointGuidKey, &endpoint.guidPropertyText)}) {
        const PROPERTYKEY asked = key;
        answers.Put({"IPropertyStore::GetValue", id, std::to_string(asked.pid)}, *text, [&](std::wstring& given) {
            qov::PropertyValue value;
            const HRESULT result = store->GetValue(asked, value.Put());
            given = value.Text();
            return result;
        });
        *text = answers.Clean(*text);
    }
}

bool ReadGuid(const std::wstring& text, GUID& guid)
{
    return text.starts_with(L"{") && SUCCEEDED(CLSIDFromString(text.c_str(), &guid));
}

}  // namespace

std::vector<FoundEndpoint> ListEndpoints(IMMDeviceEnumerator& enumerator, Answers& answers)
{
    const std::vector<ListedDevice> active = List(enumerator, eAll, DEVICE_STATE_ACTIVE, answers);
    const std::vector<ListedDevice> capture = List(enumerator, eCapture, DEVICE_STATE_ACTIVE, answers);
    (void)List(enumerator, eRender, DEVICE_STATE_ACTIVE, answers);
    std::vector<FoundEndpoint> endpoints;
    std::set<std::wstring> taken;
    for (ListedDevice& listed : Merge(active, List(enumerator, eAll, DEVICE_STATEMASK_ALL, answers))) {
        const bool isActive = listed.id.empty() || Holds(active, listed.id);
        const bool isCapture = !listed.id.empty() && Holds(capture, listed.id);
        const std::wstring name = listed.id.empty() ? L"unknown endpoint" : listed.id;
        for (unsigned number = listed.id.empty() ? 1 : 2; listed.id.empty() || !taken.insert(listed.id).second;
             ++number)
            listed.id = name + L" " + std::to_wstring(number);
        FoundEndpoint found{{}, listed.device};
        found.endpoint.deviceId = listed.id;
        if (listed.device) {
            answers.Keep({"IMMDevice::GetId", listed.id}, listed.own);
            found.endpoint.flow = FlowOf(listed, isCapture, answers);
            found.endpoint.state = StateOf(*listed.device.Get(), listed.id, isActive, answers);
            ReadProperties(*listed.device.Get(), found.endpoint, answers);
        }
        endpoints.push_back(std::move(found));
    }
    return endpoints;
}

std::vector<GUID> GuidsOf(const machine::Endpoint& endpoint)
{
    std::vector<GUID> guids;
    GUID guid{};
    if (ReadGuid(endpoint.guidPropertyText, guid))
        guids.push_back(guid);
    const std::wstring& id = endpoint.deviceId;
    if (ReadGuid(id.substr(std::min(id.rfind(L'{'), id.size())), guid))
        guids.push_back(guid);
    return guids;
}

}  // namespace snapshot
