#include "snapshot/RegistryReading.h"

#include "common/Owners.h"
#include "machine/JsonValues.h"
#include "machine/Utf16.h"

#include <algorithm>

namespace snapshot {

namespace {

constexpr DWORD MaxKeys = 65536;
constexpr DWORD KeyNameRoom = 256;
constexpr DWORD ValueNameRoom = 16384;
constexpr int ReadingAttempts = 3;  // of a value that grows meanwhile

// What a run asks for whether it is there or not.
constexpr const wchar_t* AskedProperties[] = {L"{233164c8-1b2c-4c7d-bc68-b671687a2567},1"};
constexpr const wchar_t* AskedFxProperties[] = {
    L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},1", L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},2",
    L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},5", L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},6",
    L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},7", L"{bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5"};

using ValueNames = std::set<std::wstring, machine::RegistryNameOrder>;

Answer<std::wstring> NameAt(const qov::RegistryKey& key, DWORD index, DWORD room, bool ofValue)
{
    return Answers::Twice<std::wstring>([&](std::wstring& name) -> LONG {
        std::vector<WCHAR> text(room);
        DWORD length = room;
        const LSTATUS result =
            ofValue ? RegEnumValueW(key.Get(), index, text.data(), &length, nullptr, nullptr, nullptr, nullptr)
                    : RegEnumKeyExW(key.Get(), index, text.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (result == ERROR_SUCCESS)
            name.assign(text.data(), length);
        return result;
    });
}

LONG ReadValue(const qov::RegistryKey& key, const std::wstring& name, machine::RegistryValue& value)
{
    LSTATUS result = ERROR_MORE_DATA;
    for (int attempt = 0; attempt < ReadingAttempts && result == ERROR_MORE_DATA; ++attempt) {
        DWORD size = 0;
        result = RegQueryValueExW(key.Get(), name.c_str(), nullptr, &value.type, nullptr, &size);
        if (result != ERROR_SUCCESS)
            return result;
        value.data.assign(std::max<std::size_t>(size, 1), 0);  // a null pointer would ask for the size alone
        result = RegQueryValueExW(key.Get(), name.c_str(), nullptr, &value.type, value.data.data(), &size);
        value.data.resize(std::min<std::size_t>(size, value.data.size()));
    }
    return result;
}

ValueNames ListValues(const qov::RegistryKey& key, const std::wstring& path, Answers& answers)
{
    ValueNames names;
    for (DWORD index = 0; index < MaxKeys; ++index) {
        const Answer<std::wstring> name = NameAt(key, index, ValueNameRoom, true);
        if (!answers.Keep({"RegEnumValueW", path, std::to_string(index), ERROR_NO_MORE_ITEMS}, name))
            break;
        names.insert(name.value);
    }
    return names;
}

// A run asks for those that are counted.
std::vector<std::optional<std::wstring>> ListKeys(const qov::RegistryKey& key, const std::wstring& path,
                                                  std::optional<DWORD> count, Answers& answers)
{
    std::vector<Answer<std::wstring>> listed;
    std::vector<std::optional<std::wstring>> names;
    bool anyListed = false;
    do {
        listed.push_back(NameAt(key, static_cast<DWORD>(listed.size()), KeyNameRoom, false));
        const bool given = listed.back().result == ERROR_SUCCESS;
        anyListed = anyListed || given;
        names.push_back(given ? std::optional(listed.back().value) : std::nullopt);
    } while (count ? listed.size() <= *count : listed.back().result == ERROR_SUCCESS && listed.size() < MaxKeys);
    const LONG last = listed.back().result;
    names.pop_back();  // what is behind the last one
    if (!anyListed && last != ERROR_NO_MORE_ITEMS)
        answers.Keep({"RegEnumKeyExW", path}, last);  // whichever is asked for
    else if (count)
        for (DWORD index = 0; index < *count; ++index)
            answers.Keep({"RegEnumKeyExW", path, std::to_string(index)}, listed[index]);
    return names;
}

}  // namespace

std::vector<std::optional<std::wstring>> ReadEndpointKeys(EDataFlow flow, Answers& answers)
{
    const std::wstring path = machine::EndpointsKeyPath(flow);
    qov::RegistryKey key;
    if (!answers.Put({"RegOpenKeyW", path}, key, [&](qov::RegistryKey& opened) {
            return RegOpenKeyW(HKEY_LOCAL_MACHINE, path.c_str(), opened.Put());
        }))
        return {};
    DWORD count = 0;
    const bool counted = answers.Put({"RegQueryInfoKeyW", path}, count, [&](DWORD& subkeys) {
        return RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr, nullptr,
                                nullptr, nullptr, nullptr);
    });
    auto names = ListKeys(key, path, counted ? std::optional(std::min(count, MaxKeys)) : std::nullopt, answers);
    answers.Keep({"RegCloseKey", path}, key.Close());
    return names;
}

bool IsAskedByARun(const std::wstring& valueName)
{
    static const ValueNames asked = [] {
        ValueNames names(std::begin(AskedProperties), std::end(AskedProperties));
        names.insert(std::begin(AskedFxProperties), std::end(AskedFxProperties));
        return names;
    }();
    return asked.contains(valueName);
}

std::optional<std::vector<machine::RegistryValue>> ReadValues(const machine::Endpoint& endpoint,
                                                              const std::wstring& name, Answers& answers)
{
    const std::wstring path = machine::PropertiesKeyPath(endpoint, name);
    qov::RegistryKey key;
    if (!answers.Put({"RegOpenKeyExW", path, {}, ERROR_FILE_NOT_FOUND}, key, [&](qov::RegistryKey& opened) {
            return RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, opened.Put());
        }))
        return std::nullopt;
    const ValueNames listed = ListValues(key, path, answers);
    ValueNames asked;  // as a run spells them
    if (name == L"Properties")
        asked.insert(std::begin(AskedProperties), std::end(AskedProperties));
    else
        asked.insert(std::begin(AskedFxProperties), std::end(AskedFxProperties));
    asked.insert(listed.begin(), listed.end());

    std::vector<machine::RegistryValue> values;
    ValueNames taken;
    for (const std::wstring& valueName : asked) {
        machine::RegistryValue value;
        const auto found = listed.find(valueName);
        const bool exists = found != listed.end();
        const bool read = answers.Put(
            {"RegQueryValueExW", path, machine::Utf16ToUtf8(valueName), exists ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND},
            value, [&](machine::RegistryValue& data) { return ReadValue(key, valueName, data); });
        value.name = answers.Clean(exists ? *found : valueName);
        if ((exists || read) && !taken.insert(value.name).second)
            answers.Note(L"A value of " + path + L" is left out: another one is kept as \"" + value.name + L"\"");
        else if (exists || read)
            values.push_back(std::move(value));
    }
    answers.Keep({"RegCloseKey", path}, key.Close());
    return values;
}

}  // namespace snapshot
