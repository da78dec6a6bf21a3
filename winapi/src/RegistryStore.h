// The keys and values of the registry in process memory: found by name without regard to case, subkeys in name order.
#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
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

// Of the key and everything below it.
void MarkDeleted(RegistryKey& key);

class RegistryStore {
public:
    static RegistryStore& Instance();

    std::mutex mutex;
    std::map<HKEY, KeyPtr> roots{{HKEY_CURRENT_USER, std::make_shared<RegistryKey>()},
                                 {HKEY_LOCAL_MACHINE, std::make_shared<RegistryKey>()}};
    std::map<HKEY, KeyPtr> overrides;
    std::map<HKEY, KeyPtr> open;
    std::set<HKEY> readOnly;

    // Gives the key behind a handle. That of a deleted key serves nothing but to be closed.
    LSTATUS Find(HKEY handle, KeyPtr& key) const;

    HKEY Open(KeyPtr key, bool toRead);

private:
    ULONG_PTR nextHandle_ = 0x100;
};

}  // namespace winapi::internal
