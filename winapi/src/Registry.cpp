// A registry in process memory: keys and values by name without regard to case, subkeys listed in name order.
#include "Internal.h"

#include <algorithm>
#include <cwctype>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace {

using winapi::internal::Intercepted;
using winapi::internal::Unsupported;

struct NameOrder {
    bool operator()(const std::wstring& left, const std::wstring& right) const
    {
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                            [](wchar_t a, wchar_t b) { return Upper(a) < Upper(b); });
    }
    static std::wint_t Upper(wchar_t unit) { return std::towupper(static_cast<std::wint_t>(unit)); }
};

struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

struct Key {
    bool isVolatile = false;
    std::map<std::wstring, std::shared_ptr<Key>, NameOrder> subKeys;
    std::map<std::wstring, Value, NameOrder> values;
};
using KeyPtr = std::shared_ptr<Key>;

class Registry {
public:
    static Registry& Instance()
    {
        static Registry registry;
        return registry;
    }

    std::mutex mutex;
    std::map<HKEY, KeyPtr> roots{{HKEY_CURRENT_USER, std::make_shared<Key>()},
                                 {HKEY_LOCAL_MACHINE, std::make_shared<Key>()}};
    std::map<HKEY, KeyPtr> overrides;
    std::map<HKEY, KeyPtr> open;

    // The key behind a handle; null for a handle that is not open.
    KeyPtr Find(HKEY handle) const
    {
        for (const auto* handles : {&overrides, &roots, &open})
            if (const auto found = handles->find(handle); found != handles->end())
                return found->second;
        return nullptr;
    }

    HKEY Open(KeyPtr key)
    {
        const auto handle = reinterpret_cast<HKEY>(nextHandle_);
        nextHandle_ += 4;
        open.emplace(handle, std::move(key));
        return handle;
    }

private:
    ULONG_PTR nextHandle_ = 0x100;
};

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

LSTATUS OpenPath(const char* function, HKEY key, LPCWSTR path, PHKEY result)
{
    if (const auto code = Intercepted(function))
        return *code;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    KeyPtr found = registry.Find(key);
    if (!found)
        return ERROR_INVALID_HANDLE;
    for (const std::wstring& name : PathNames(function, path)) {
        const auto next = found->subKeys.find(name);
        if (next == found->subKeys.end())
            return ERROR_FILE_NOT_FOUND;
        found = next->second;
    }
    *result = registry.Open(std::move(found));
    return ERROR_SUCCESS;
}

}  // namespace

void winapi::internal::CountRegistry(Holdings& holdings)
{
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    holdings.openKeys = registry.open.size();
    holdings.overriddenKeys = registry.overrides.size();
}

LSTATUS WINAPI RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result)
{
    return OpenPath("RegOpenKeyW", key, subKey, result);
}

LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result)
{
    if (options != 0 || access != KEY_READ)
        Unsupported("RegOpenKeyExW", "options or an access other than KEY_READ");
    return OpenPath("RegOpenKeyExW", key, subKey, result);
}

LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                               const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition)
{
    if (reserved != 0 || keyClass != nullptr || (options & ~REG_OPTION_VOLATILE) != 0 || access != KEY_ALL_ACCESS ||
        security != nullptr || disposition != nullptr)
        Unsupported("RegCreateKeyExW", "anything but options and full access");
    if (const auto code = Intercepted("RegCreateKeyExW"))
        return *code;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    KeyPtr found = registry.Find(key);
    if (!found)
        return ERROR_INVALID_HANDLE;
    const bool wantsVolatile = (options & REG_OPTION_VOLATILE) != 0;
    for (const std::wstring& name : PathNames("RegCreateKeyExW", subKey)) {
        KeyPtr& next = found->subKeys[name];
        if (!next) {
            if (found->isVolatile && !wantsVolatile) {
                found->subKeys.erase(name);
                return ERROR_CHILD_MUST_BE_VOLATILE;
            }
            next = std::make_shared<Key>();
            next->isVolatile = wantsVolatile;
        }
        found = next;
    }
    *result = registry.Open(std::move(found));
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classLength, LPDWORD reserved, LPDWORD subKeys,
                                LPDWORD maxSubKeyLength, LPDWORD maxClassLength, LPDWORD values,
                                LPDWORD maxValueNameLength, LPDWORD maxValueLength, LPDWORD securityDescriptor,
                                FILETIME* lastWrite)
{
    if (reserved || maxSubKeyLength || maxClassLength || maxValueNameLength || maxValueLength || securityDescriptor ||
        lastWrite)
        Unsupported("RegQueryInfoKeyW", "anything but the class and the counts of subkeys and values");
    if (const auto code = Intercepted("RegQueryInfoKeyW"))
        return *code;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    const KeyPtr found = registry.Find(key);
    if (!found)
        return ERROR_INVALID_HANDLE;
    if (keyClass != nullptr) {
        if (classLength == nullptr || *classLength == 0)
            return ERROR_INVALID_PARAMETER;
        keyClass[0] = L'\0';
    }
    if (classLength != nullptr)
        *classLength = 0;
    if (subKeys != nullptr)
        *subKeys = static_cast<DWORD>(found->subKeys.size());
    if (values != nullptr)
        *values = static_cast<DWORD>(found->values.size());
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved, LPWSTR keyClass,
                             LPDWORD classLength, FILETIME* lastWrite)
{
    if (reserved || keyClass || classLength || lastWrite)
        Unsupported("RegEnumKeyExW", "anything but the name");
    if (const auto code = Intercepted("RegEnumKeyExW"))
        return *code;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    const KeyPtr found = registry.Find(key);
    if (!found)
        return ERROR_INVALID_HANDLE;
    if (index >= found->subKeys.size())
        return ERROR_NO_MORE_ITEMS;
    const std::wstring& subKey = std::next(found->subKeys.begin(), static_cast<std::ptrdiff_t>(index))->first;
    if (subKey.size() >= *nameLength)
        return ERROR_MORE_DATA;
    std::copy_n(subKey.c_str(), subKey.size() + 1, name);
    *nameLength = static_cast<DWORD>(subKey.size());
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (reserved != nullptr || name == nullptr)
        Unsupported("RegQueryValueExW", "the key's unnamed value");
    if (const auto code = Intercepted("RegQueryValueExW"))
        return *code;
    if (data != nullptr && size == nullptr)
        return ERROR_INVALID_PARAMETER;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    const KeyPtr found = registry.Find(key);
    if (!found)
        return ERROR_INVALID_HANDLE;
    const auto value = found->values.find(name);
    if (value == found->values.end())
        return ERROR_FILE_NOT_FOUND;
    if (type != nullptr)
        *type = value->second.type;
    if (size == nullptr)
        return ERROR_SUCCESS;
    const std::vector<BYTE>& stored = value->second.data;
    const DWORD room = *size;
    *size = static_cast<DWORD>(stored.size());
    if (data == nullptr)
        return ERROR_SUCCESS;
    if (room < stored.size())
        return ERROR_MORE_DATA;
    std::copy(stored.begin(), stored.end(), data);
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size)
{
    if (reserved != 0 || name == nullptr)
        Unsupported("RegSetValueExW", "the key's unnamed value");
    if (const auto code = Intercepted("RegSetValueExW"))
        return *code;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    const KeyPtr found = registry.Find(key);
    if (!found)
        return ERROR_INVALID_HANDLE;
    found->values[name] = Value{type, size == 0 ? std::vector<BYTE>() : std::vector<BYTE>(data, data + size)};
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegDeleteTreeW(HKEY key, LPCWSTR subKey)
{
    const std::vector<std::wstring> names = PathNames("RegDeleteTreeW", subKey);
    if (names.size() != 1)
        Unsupported("RegDeleteTreeW", "a subkey path of more than one name");
    if (const auto code = Intercepted("RegDeleteTreeW"))
        return *code;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    const KeyPtr found = registry.Find(key);
    if (!found)
        return ERROR_INVALID_HANDLE;
    return found->subKeys.erase(names.front()) == 0 ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

LSTATUS WINAPI RegOverridePredefKey(HKEY key, HKEY replacement)
{
    if (const auto code = Intercepted("RegOverridePredefKey"))
        return *code;
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    if (!registry.roots.contains(key))
        return ERROR_INVALID_HANDLE;
    if (replacement == nullptr) {
        registry.overrides.erase(key);
        return ERROR_SUCCESS;
    }
    KeyPtr found = registry.Find(replacement);
    if (!found)
        return ERROR_INVALID_HANDLE;
    registry.overrides[key] = std::move(found);
    return ERROR_SUCCESS;
}

LSTATUS WINAPI RegCloseKey(HKEY key)
{
    const auto code = Intercepted("RegCloseKey");
    Registry& registry = Registry::Instance();
    const std::lock_guard lock(registry.mutex);
    if (registry.roots.contains(key))
        return code.value_or(ERROR_SUCCESS);
    if (registry.open.erase(key) == 0)
        return ERROR_INVALID_HANDLE;
    return code.value_or(ERROR_SUCCESS);
}
