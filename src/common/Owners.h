// Owners of what the platform hands out: each gives its resource back when it goes.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <propidl.h>

#include <cassert>
#include <string>
#include <utility>

namespace qov {

// An open registry key.
class RegistryKey {
public:
    RegistryKey() = default;
    RegistryKey(RegistryKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
    RegistryKey& operator=(RegistryKey&& other) noexcept
    {
        std::swap(key_, other.key_);
        return *this;
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;
    ~RegistryKey() { (void)Close(); }

    [[nodiscard]] HKEY Get() const { return key_; }
    explicit operator bool() const { return key_ != nullptr; }
    [[nodiscard]] HKEY* Put()
    {
        assert(key_ == nullptr);
        return &key_;
    }

    // The handle is given up whatever the result is.
    [[nodiscard]] LSTATUS Close()
    {
        const HKEY closed = std::exchange(key_, nullptr);
        return closed == nullptr ? ERROR_SUCCESS : RegCloseKey(closed);
    }

private:
    HKEY key_ = nullptr;
};

// A text that a COM call allocated as task memory.
class TaskText {
public:
    TaskText() = default;
    TaskText(const TaskText&) = delete;
    TaskText& operator=(const TaskText&) = delete;
    ~TaskText() { CoTaskMemFree(text_); }

    [[nodiscard]] LPWSTR* Put()
    {
        assert(text_ == nullptr);
        return &text_;
    }
    [[nodiscard]] LPCWSTR Get() const { return text_; }
    // Empty where there is no text.
    [[nodiscard]] std::wstring Text() const { return text_ == nullptr ? std::wstring() : std::wstring(text_); }

private:
    LPWSTR text_ = nullptr;
};

// A property value.
class PropertyValue {
public:
    PropertyValue() { PropVariantInit(&value_); }
    PropertyValue(const PropertyValue&) = delete;
    PropertyValue& operator=(const PropertyValue&) = delete;
    ~PropertyValue() { (void)PropVariantClear(&value_); }

    [[nodiscard]] PROPVARIANT* Put()
    {
        assert(value_.vt == VT_EMPTY);
        return &value_;
    }
    // Empty for a value that is missing or no text.
    [[nodiscard]] std::wstring Text() const
    {
        return value_.vt == VT_LPWSTR && value_.pwszVal != nullptr ? std::wstring(value_.pwszVal) : std::wstring();
    }

private:
    PROPVARIANT value_;
};

}  // namespace qov
