#include "simulation/devices/ComObject.h"

#include <algorithm>

namespace simulation {

HRESULT HandOutText(const std::wstring& text, LPWSTR* receiver)
{
    if (receiver == nullptr)
        return E_POINTER;
    *receiver = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(WCHAR)));
    if (*receiver == nullptr)
        return E_OUTOFMEMORY;
    std::copy_n(text.c_str(), text.size() + 1, *receiver);
    return S_OK;
}

}  // namespace simulation
