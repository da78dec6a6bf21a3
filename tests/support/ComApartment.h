#pragma once

#include <objbase.h>

#include <stdexcept>

// This thread is a member of the multithreaded apartment while it lives.
class ComApartment {
public:
    ComApartment()
    {
        if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
            throw std::runtime_error("CoInitializeEx failed");
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment() { CoUninitialize(); }
};
