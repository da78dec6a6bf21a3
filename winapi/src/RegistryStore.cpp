#include "RegistryStore.h"

#include "Internal.h"

namespace winapi::internal {

bool NameOrder::operator()(const std::wstring& left, const std::wstring& right) const
{
    return CompareStringOrdinal(left.c_str(), static_cast<int>(left.size()), right.c_str(),
                                static_cast<int>(right.size()), TRUE) == CSTR_LESS_THAN;
}

void MarkDeleted(RegistryKey& key)
{
    key.isDeleted = true;
    for (const auto& [name, subKey] : key.subKeys)
        MarkDeleted(*subKey);
}

RegistryStore& RegistryStore::Instance()
{
    static RegistryStore store;
    return store;
}

LSTATUS RegistryStore::Find(HKEY handle, KeyPtr& key) const
{
    key.reset();
    for (const auto* handles : {&roots, &overrides})
        if (const auto found = handles->find(handle); found != handles->end())
            key = found->second;
    if (const auto found = open.find(handle); found != open.end())
        key = found->second.key;
    return key == nullptr ? ERROR_INVALID_HANDLE : key->isDeleted ? ERROR_KEY_DELETED : ERROR_SUCCESS;
}

std::wstring RegistryStore::PathOf(HKEY handle) const
{
    const auto found = open.find(handle);
    return found == open.end() ? std::wstring() : found->second.path;
}

HKEY RegistryStore::Open(OpenKey key)
{
    const auto handle = reinterpret_cast<HKEY>(nextHandle_);
    nextHandle_ += 4;
    open.emplace(handle, std::move(key));
    return handle;
}

void CountRegistry(Holdings& holdings)
{
    RegistryStore& registry = RegistryStore::Instance();
    const std::lock_guard lock(registry.mutex);
    holdings.openKeys = registry.open.size();
    holdings.overriddenKeys = registry.overrides.size();
}

}  // namespace winapi::internal
