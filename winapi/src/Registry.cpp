// The registry functions, over a registry in process memory.
#include "Internal.h"
#include "RegistryStore.h"

#include <algorithm>

namespace {

using winapi::internal::KeyPtr;
using winapi::internal::OpenKey;
using winapi::internal::RegistryKey;
using winapi::internal::RegistryStore;
using winapi::internal::RegistryValue;
using winapi::internal::Unsupported;
using winapi::internal::Watched;

std::vector<std::wstring> PathNames(const char* function, LPCWSTR path)
{
    if (path == nullptr || *path == L'\0')
        Unsupported(function, "no subkey name");
    std::vector<std::wstring> names(1);
    for (const WCHAR* unit = path; *unit != L'\0'; ++unit) {
        if (*unit == L'\\')
            names.emplace_back();
        else
            names.back() += *unit;
    }
    if (std::any_of(names.begin(), names.end(), [](const auto& name) { return name.empty() || name.size() > 255; }))
        Unsupported(function, "an empty or overlong name in the subkey path");
    return names;
}

std::wstring PathBelow(HKEY key, LPCWSTR path)
{
    RegistryStore& registry = RegistryStore::Instance();
    const std::lock_guard lock(registry.mutex);
    const std::wstring parent = registry.PathOf(key);
    return parent.empty() || *path == L'\0' ? parent + path : parent + L"\\" + path;
}

// Runs `body` on the store and the key behind the handle.
template <class Body>
LSTATUS OnKey(HKEY key, Body body)
{
    RegistryStore& registry = RegistryStore::Instance();
    const std::lock_guard lock(registry.mutex);
    KeyPtr found;
    const LSTATUS status = registry.Find(key, found);
    return status == ERROR_SUCCESS ? body(registry, found) : status;
}

// As a function that is watched.
template <class Body>
LSTATUS WatchedOnKey(const char* function, HKEY key, const std::wstring& arguments, Body body)
{
    return Watched({function, PathBelow(key, L""), arguments},
                   [&] { return OnKey(key, [&](const RegistryStore&, const KeyPtr& found) { return body(*found); }); });
}

LSTATUS OpenPath(const char* function, HKEY key, LPCWSTR path, bool toRead, PHKEY result)
{
    const std::vector<std::wstring> names = PathNames(function, path);
    const std::wstring wholePath = PathBelow(key, path);
    return Watched({function, wholePath}, [&] {
        return OnKey(key, [&](RegistryStore& registry, KeyPtr found) -> LSTATUS {
            for (const std::wstring& name : names) {
                const auto next = found->subKeys.find(name);
                if (next == found->subKeys.end())
                    return ERROR_FILE_NOT_FOUND;
                found = next->second;
            }
            *result = registry.Open({std::move(found), wholePath, toRead});
            return ERROR_SUCCESS;
        });
    });
}

// The name of the entry, of those by name, that `index` counts to.
template <class Entries>
LSTATUS GiveName(const Entries& entries, DWORD index, LPWSTR name, LPDWORD nameLength)
{
    if (index >= entries.size())
        return ERROR_NO_MORE_ITEMS;
    const std::wstring& found = std::next(entries.begin(), static_cast<std::ptrdiff_t>(index))->first;
    if (found.size() >= *nameLength)
        return ERROR_MORE_DATA;
    std::copy_n(found.c_str(), found.size() + 1, name);
    *nameLength = static_cast<DWORD>(found.size());
    return ERROR_SUCCESS;
}

bool IsText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

bool IsNul(const BYTE* unit) { return unit[0] == 0 && unit[1] == 0; }

LSTATUS GiveData(const RegistryValue& value, LPBYTE data, DWORD& size)
{
    const std::vector<BYTE>& stored = value.data;
    const DWORD room = size;
    size = static_cast<DWORD>(stored.size());
    if (data == nullptr)
        return ERROR_SUCCESS;
    if (room < stored.size())
        return ERROR_MORE_DATA;
    BYTE* const end = std::copy(stored.begin(), stored.end(), data);
    // A text that lacks its terminator is given one where there is room, uncounted.
    if (IsText(value.type) && stored.size() >= 2 && room - stored.size() >= 2 && !IsNul(end - 2))
        std::fill_n(end, 2, BYTE{0});
    return ERROR_SUCCESS;
}

}  // namespace

LSTATUS WINAPI RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result)
{
    return OpenPath("RegOpenKeyW", key, subKey, false, result);
}

LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result)
{
    if (options != 0 || access != KEY_READ)
        Unsupported("RegOpenKeyExW", "options or an access other than KEY_READ");
    return OpenPath("RegOpenKeyExW", key, subKey, true, result);
}

LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                               const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition)
{
    if (reserved != 0 || keyClass != nullptr || (options & ~REG_OPTION_VOLATILE) != 0 || access != KEY_ALL_ACCESS ||
        security != nullptr || disposition != nullptr)
        Unsupported("RegCreateKeyExW", "anything but options and full access");
    const bool wantsVolatile = (options & REG_OPTION_VOLATILE) != 0;
    const std::wstring wholePath = PathBelow(key, subKey);
    return OnKey(key, [&](RegistryStore& registry, KeyPtr found) -> LSTATUS {
        for (const std::wstring& name : PathNames("RegCreateKeyExW", subKey)) {
            KeyPtr& next = found->subKeys[name];
            if (!next) {
                if (found->isVolatile && !wantsVolatile) {
                    found->subKeys.erase(name);
                    return ERROR_CHILD_MUST_BE_VOLATILE;
                }
                next = std::make_shared<RegistryKey>();
                next->isVolatile = wantsVolatile;
            }
            found = next;
        }
        *result = registry.Open({std::move(found), wholePath});
        return ERROR_SUCCESS;
    });
}

LSTATUS WINAPI RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classLength, LPDWORD reserved, LPDWORD subKeys,
                                LPDWORD maxSubKeyLength, LPDWORD maxClassLength, LPDWORD values,
                                LPDWORD maxValueNameLength, LPDWORD maxValueLength, LPDWORD securityDescriptor,
                                FILETIME* lastWrite)
{
    if (reserved || maxSubKeyLength || maxClassLength || maxValueNameLength || maxValueLength || securityDescriptor ||
        lastWrite)
        Unsupported("RegQueryInfoKeyW", "anything but the class and the counts of subkeys and values");
    return WatchedOnKey("RegQueryInfoKeyW", key, {}, [&](const RegistryKey& found) -> LSTATUS {
        if (keyClass != nullptr) {
            if (classLength == nullptr)
                return ERROR_INVALID_PARAMETER;
            if (*classLength == 0)
                Unsupported("RegQueryInfoKeyW", "a class buffer without room");
            keyClass[0] = L'\0';
        }
        if (classLength != nullptr)
            *classLength = 0;
        if (subKeys != nullptr)
            *subKeys = static_cast<DWORD>(found.subKeys.size());
        if (values != nullptr)
            *values = static_cast<DWORD>(found.values.size());
        return ERROR_SUCCESS;
    });
}

LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved, LPWSTR keyClass,
                             LPDWORD classLength, FILETIME* lastWrite)
{
    if (reserved || keyClass || classLength || lastWrite)
        Unsupported("RegEnumKeyExW", "anything but the name");
    return WatchedOnKey("RegEnumKeyExW", key, std::to_wstring(index),
                        [&](const RegistryKey& found) { return GiveName(found.subKeys, index, name, nameLength); });
}

LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved, LPDWORD type,
                             LPBYTE data, LPDWORD size)
{
    if (reserved || type || data || size)
        Unsupported("RegEnumValueW", "anything but the name");
    return WatchedOnKey("RegEnumValueW", key, std::to_wstring(index),
                        [&](const RegistryKey& found) { return GiveName(found.values, index, name, nameLength); });
}

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (reserved != nullptr || name == nullptr)
        Unsupported("RegQueryValueExW", "the key's unnamed value");
    return WatchedOnKey("RegQueryValueExW", key, name, [&](const RegistryKey& found) -> LSTATUS {
        if (data != nullptr && size == nullptr)
            return ERROR_INVALID_PARAMETER;
        const auto value = found.values.find(name);
        if (value == found.values.end())
            return ERROR_FILE_NOT_FOUND;
        if (type != nullptr)
            *type = value->second.type;
        return size == nullptr ? ERROR_SUCCESS : GiveData(value->second, data, *size);
    });
}

LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size)
{
    if (reserved != 0 || name == nullptr)
        Unsupported("RegSetValueExW", "the key's unnamed value");
    // A text that lacks its terminator, but has it right behind, is stored with it.
    const DWORD wholeUnits = size / 2 * 2;
    if (IsText(type) && wholeUnits != 0 && !IsNul(data + wholeUnits - 2) && IsNul(data + wholeUnits))
        size += 2;
    return OnKey(key, [&](const RegistryStore& registry, const KeyPtr& found) -> LSTATUS {
        if (const auto handle = registry.open.find(key); handle != registry.open.end() && handle->second.readOnly)
            return ERROR_ACCESS_DENIED;
        found->values[name] =
            RegistryValue{type, size == 0 ? std::vector<BYTE>() : std::vector<BYTE>(data, data + size)};
        return ERROR_SUCCESS;
    });
}

LSTATUS WINAPI RegDeleteTreeW(HKEY key, LPCWSTR subKey)
{
    const std::vector<std::wstring> names = PathNames("RegDeleteTreeW", subKey);
    if (names.size() != 1)
        Unsupported("RegDeleteTreeW", "a subkey path of more than one name");
    return OnKey(key, [&](const RegistryStore&, const KeyPtr& found) -> LSTATUS {
        const auto tree = found->subKeys.find(names.front());
        if (tree == found->subKeys.end())
            return ERROR_FILE_NOT_FOUND;
        MarkDeleted(*tree->second);
        found->subKeys.erase(tree);
        return ERROR_SUCCESS;
    });
}

LSTATUS WINAPI RegOverridePredefKey(HKEY key, HKEY replacement)
{
    RegistryStore& registry = RegistryStore::Instance();
    const std::lock_guard lock(registry.mutex);
    if (!registry.roots.contains(key))
        return ERROR_INVALID_HANDLE;
    if (replacement == nullptr) {
        registry.overrides.erase(key);
        return ERROR_SUCCESS;
    }
    KeyPtr found;
    if (const LSTATUS status = registry.Find(replacement, found); status != ERROR_SUCCESS)
        return status;
    registry.overrides[key] = std::move(found);
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegCloseKey(HKEY key)
{
    RegistryStore& registry = RegistryStore::Instance();
    winapi::FunctionCall call{"RegCloseKey"};
    LSTATUS result = ERROR_SUCCESS;
    {
        const std::lock_guard lock(registry.mutex);
        // Closing needs no memory: owners do it in their destructors.
        if (auto closed = registry.open.extract(key))
            call.object = std::move(closed.mapped().path);
        else if (!registry.roots.contains(key))
            result = ERROR_INVALID_HANDLE;
    }
    return Watched(call, [result] { return result; });
}
