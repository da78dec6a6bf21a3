#include "machine/JsonValues.h"
#include "machine/Utf16.h"
#include "snapshot/RegistryReading.h"
#include "snapshot/Snapshot.h"

#include <algorithm>
#include <cwctype>
#include <set>
#include <utility>

namespace snapshot {

namespace {

using machine::Bytes;

constexpr wchar_t ShortNameValue[] = L"{a45c254e-df1c-4efd-8020-67d146a850e0},2";
// What people call an endpoint and its device: the names of the endpoint, of the device and of the device interface.
const std::set<std::wstring, machine::RegistryNameOrder> NameValues = {
    L"{a45c254e-df1c-4efd-8020-67d146a850e0},14", ShortNameValue, L"{b3f8fa53-0004-438e-9003-51a46e139bfc},6",
    L"{026e516e-b814-414b-83cd-856d6fef4822},2"};

bool IsText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

bool IsWordUnit(wchar_t unit) { return std::iswalnum(static_cast<std::wint_t>(unit)) != 0; }

bool IsSameUnit(wchar_t left, wchar_t right)
{
    return std::towlower(static_cast<std::wint_t>(left)) == std::towlower(static_cast<std::wint_t>(right));
}

// As a whole word, in either case; npos: nowhere.
std::size_t Find(const std::wstring& text, const std::wstring& name, std::size_t from)
{
    for (auto at = text.begin() + static_cast<std::ptrdiff_t>(from);; ++at) {
        at = std::search(at, text.end(), name.begin(), name.end(), IsSameUnit);
        if (at == text.end())
            return std::wstring::npos;
        const auto end = at + static_cast<std::ptrdiff_t>(name.size());
        if ((at == text.begin() || !IsWordUnit(at[-1]) || !IsWordUnit(name.front())) &&
            (end == text.end() || !IsWordUnit(*end) || !IsWordUnit(name.back())))
            return static_cast<std::size_t>(at - text.begin());
    }
}

void Replace(std::wstring& text, const std::wstring& name, const std::wstring& other)
{
    for (std::size_t at = 0; (at = Find(text, name, at)) != std::wstring::npos; at += other.size())
        text.replace(at, name.size(), other);
}

// The text that data are, from the byte at `from`: units of one or two bytes.
std::wstring TextOf(const Bytes& data, std::size_t from, std::size_t unitSize)
{
    std::wstring text;
    for (std::size_t index = from; index + unitSize <= data.size(); index += unitSize)
        text += static_cast<wchar_t>(unitSize == 1 ? data[index] : data[index] | (data[index + 1] << 8));
    return text;
}

bool Holds(const Bytes& data, const std::wstring& name)
{
    const std::wstring texts[] = {TextOf(data, 0, 2), TextOf(data, 1, 2), TextOf(data, 0, 1)};
    return std::any_of(std::begin(texts), std::end(texts),
                       [&name](const std::wstring& text) { return Find(text, name, 0) != std::wstring::npos; });
}

void Replace(Bytes& data, const std::wstring& name, const std::wstring& other)
{
    std::wstring text = TextOf(data, 0, 2);
    Replace(text, name, other);
    const Bytes end(data.end() - static_cast<std::ptrdiff_t>(data.size() % 2), data.end());
    data = machine::TextData(text, 0);
    data.insert(data.end(), end.begin(), end.end());
}

template <class Change>
void ForEachValue(machine::Endpoint& endpoint, Change change)
{
    for (auto* const values : {&endpoint.properties, &endpoint.fxProperties})
        if (*values)
            for (machine::RegistryValue& value : **values)
                if (!IsAskedByARun(value.name))
                    change(value);
}

class Redaction {
public:
    explicit Redaction(machine::MachineDescription& machine) : machine_(machine) {}

    void Make()
    {
        for (std::size_t index = 0; index < machine_.endpoints.size(); ++index)
            TakeNames(machine_.endpoints[index], L"Endpoint " + std::to_wstring(index + 1));
        // A name that holds another one goes first.
        std::stable_sort(names_.begin(), names_.end(),
                         [](const Name& left, const Name& right) { return left.text.size() > right.text.size(); });
        for (const Name& name : names_) {
            for (std::size_t index = 0; index < machine_.endpoints.size(); ++index)
                ForEachValue(machine_.endpoints[index],
                             [&](machine::RegistryValue& value) { Hide(value, name, index + 1); });
            for (std::wstring& note : machine_.notes)
                Replace(note, name.text, name.other);
        }
        for (const auto& [value, number] : emptied_)
            machine_.notes.push_back(L"The value " + value->name + L" of Endpoint " + std::to_wstring(number) +
                                     L" held a name and was emptied");
    }

private:
    struct Name {
        std::wstring text;
        std::wstring other;
    };

    void TakeName(const std::wstring& text, const std::wstring& other)
    {
        if (!text.empty())
            names_.push_back({text, other});
    }

    void TakeNames(machine::Endpoint& endpoint, const std::wstring& other)
    {
        TakeName(endpoint.friendlyName, other);
        endpoint.friendlyName = other;
        ForEachValue(endpoint, [&](machine::RegistryValue& value) {
            if (!NameValues.contains(value.name) || !IsText(value.type))
                return;
            if (!machine::RegistryNameOrder()(value.name, ShortNameValue) &&
                !machine::RegistryNameOrder()(ShortNameValue, value.name)) {
                const std::wstring text = TextOf(value.data, 0, 2);
                TakeName(text.substr(0, text.find(L'\0')), other);
            }
            value.data = machine::TextData(other);
        });
    }

    void Hide(machine::RegistryValue& value, const Name& name, std::size_t number)
    {
        const std::wstring former = value.name;
        Replace(value.name, name.text, name.other);
        if (value.name != former)
            for (machine::Fault& fault : machine_.faults)
                if (fault.arguments == machine::Utf16ToUtf8(former))
                    fault.arguments = machine::Utf16ToUtf8(value.name);
        if (IsText(value.type)) {
            Replace(value.data, name.text, name.other);
        } else if (Holds(value.data, name.text)) {
            value.data.clear();
            emptied_.emplace_back(&value, number);
        }
    }

    machine::MachineDescription& machine_;
    std::vector<Name> names_;
    std::vector<std::pair<const machine::RegistryValue*, std::size_t>> emptied_;  // and the endpoint's number
};

}  // namespace

void Redact(machine::MachineDescription& machine) { Redaction(machine).Make(); }

}  // namespace snapshot
