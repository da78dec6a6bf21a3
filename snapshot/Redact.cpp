#include "snapshot/Snapshot.h"

#include "machine/JsonValues.h"

#include <algorithm>
#include <set>

namespace snapshot {

namespace {

using machine::Bytes;

// What people call an endpoint and its device: the names of the device, of the endpoint, and of the device interface.
const std::set<std::wstring, machine::RegistryNameOrder> NameValues = {
    L"{a45c254e-df1c-4efd-8020-67d146a850e0},14", L"{a45c254e-df1c-4efd-8020-67d146a850e0},2",
    L"{b3f8fa53-0004-438e-9003-51a46e139bfc},6", L"{026e516e-b814-414b-83cd-856d6fef4822},2"};

void Replace(std::wstring& text, const std::wstring& name, const std::wstring& other)
{
    for (std::size_t at = 0; !name.empty() && (at = text.find(name, at)) != std::wstring::npos; at += other.size())
        text.replace(at, name.size(), other);
}

// At whole units of the text that the data may be.
void Replace(Bytes& data, const std::wstring& name, const std::wstring& other)
{
    std::wstring text;
    for (std::size_t index = 0; index + 1 < data.size(); index += 2)
        text += static_cast<wchar_t>(data[index] | (data[index + 1] << 8));
    const bool odd = data.size() % 2 != 0;
    const std::uint8_t last = odd ? data.back() : std::uint8_t{};
    Replace(text, name, other);
    data = machine::TextData(text, 0);
    if (odd)
        data.push_back(last);
}

template <class Change>
void ForEachValue(machine::Endpoint& endpoint, Change change)
{
    for (auto* const values : {&endpoint.properties, &endpoint.fxProperties})
        if (*values)
            for (machine::RegistryValue& value : **values)
                change(value);
}

}  // namespace

void Redact(machine::MachineDescription& machine)
{
    std::vector<std::pair<std::wstring, std::wstring>> names;
    for (machine::Endpoint& endpoint : machine.endpoints) {
        const std::wstring other = L"Endpoint " + std::to_wstring(names.size() + 1);
        names.emplace_back(endpoint.friendlyName, other);
        endpoint.friendlyName = other;
        ForEachValue(endpoint, [&](machine::RegistryValue& value) {
            if (value.type == REG_SZ && NameValues.contains(value.name))
                value.data = machine::TextData(other);
        });
    }
    // A name that holds another one goes first.
    std::stable_sort(names.begin(), names.end(),
                     [](const auto& left, const auto& right) { return left.first.size() > right.first.size(); });
    for (const auto& renamed : names) {
        for (machine::Endpoint& endpoint : machine.endpoints)
            ForEachValue(endpoint, [&renamed](machine::RegistryValue& value) {
                Replace(value.data, renamed.first, renamed.second);
            });
        for (std::wstring& note : machine.notes)
            Replace(note, renamed.first, renamed.second);
    }
}

}  // namespace snapshot
