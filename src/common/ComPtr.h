#pragma once

#include <unknwn.h>

#include <cassert>
#include <utility>

namespace qov {

// Counted reference to a COM interface.
template <class Interface>
class ComPtr {
public:
    ComPtr() = default;
    ComPtr(const ComPtr& other) : pointer_(other.pointer_)
    {
        if (pointer_ != nullptr)
            pointer_->AddRef();
    }
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept
    {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPtr() { Reset(); }

    void Reset()
    {
        if (Interface* const released = std::exchange(pointer_, nullptr))
            released->Release();
    }

    [[nodiscard]] Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }

    // The place for a call to put a new reference; the pointer must be empty.
    [[nodiscard]] Interface** Put()
    {
        assert(pointer_ == nullptr);
        return &pointer_;
    }
    [[nodiscard]] void** PutVoid() { return reinterpret_cast<void**>(Put()); }

    // Asks the object for another of its interfaces.
    template <class Other>
    [[nodiscard]] HRESULT QueryInto(ComPtr<Other>& other) const
    {
        return pointer_->QueryInterface(__uuidof(Other), other.PutVoid());
    }

private:
    Interface* pointer_ = nullptr;
};

}  // namespace qov
