// The keys and values of the registry in process memory: found by name without regard to case, subkeys in name order.
#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace winapi::internal {

struct NameOrder {
    bool operator()(const std::wstring& left, const std::wstring& right) const;
};

struct RegistryValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

struct RegistryKey {
    bool isVolatile = false;
    bool isDeleted = false;
    std::map<std::wstring, std::shared_ptr<RegistryKey>, NameOrder> subKeys;
    std::map<std::wstring, RegistryValue, NameOrder> values;
};
using KeyPtr = std::shared_ptr<RegistryKey>;

struct OpenKey {
    KeyPtr key;
    std::wstring path;  // below the predefined key, as it was opened
    bool readOnly = false;
};

// Of the key and everything below it.
void MarkDeleted(RegistryKey& key);

class RegistryStore {
public:
    static RegistryStore& Instance();

    std::mutex mutex;
    std::map<HKEY, KeyPtr> roots{{HKEY_CURRENT_USER, std::make_shared<RegistryKey>()},
                                 {HKEY_LOCAL_MACHINE, std::make_shared<RegistryKey>()}};
    std::map<HKEY, KeyPtr> overrides;
    std::map<HKEY, OpenKey> open;

    // Gives the key behind a handle. That of a deleted key serves nothing but to be closed.
    LSTATUS Find(HKEY handle, KeyPtr& key) const;

    // Of a predefined key, and of a handle that is none: empty.
    [[nodiscard]] std::wstring PathOf(HKEY handle) const;

    HKEY Open(OpenKey key);

private:
    ULONG_PTR nextHandle_ = 0x100;
};

}  // namespace winapi::internal
