// Task memory, and the platform values and texts that are made of it.
#include <propidl.h>

#include "Internal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>

namespace {

using winapi::internal::Unsupported;
using winapi::internal::Watched;

struct TaskMemory {
    std::mutex mutex;
    std::unordered_set<void*> blocks;
};

TaskMemory& Memory()
{
    static TaskMemory memory;
    return memory;
}

constexpr int ClassIdLength = 38;
constexpr char ClassIdFormat[] = "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}";
// The form of a class id text: 'x' stands for a hexadecimal digit.
constexpr char ClassIdForm[] = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";

int HexDigit(WCHAR unit)
{
    if (unit >= L'0' && unit <= L'9')
        return unit - L'0';
    if (unit >= L'a' && unit <= L'f')
        return unit - L'a' + 10;
    if (unit >= L'A' && unit <= L'F')
        return unit - L'A' + 10;
    return -1;
}

}  // namespace

void winapi::internal::CountTaskMemory(Holdings& holdings)
{
    const std::lock_guard lock(Memory().mutex);
    holdings.taskMemoryBlocks = Memory().blocks.size();
}

std::wstring winapi::internal::ClassIdText(REFCLSID classId)
{
    char text[ClassIdLength + 1];
    const std::uint8_t* const last = classId.Data4;
    std::snprintf(text, sizeof(text), ClassIdFormat, classId.Data1, classId.Data2, classId.Data3, last[0], last[1],
                  last[2], last[3], last[4], last[5], last[6], last[7]);
    return {text, text + ClassIdLength};
}

LPVOID STDAPICALLTYPE CoTaskMemAlloc(std::size_t size)
{
    std::unique_ptr<void, decltype(&std::free)> block(std::malloc(size == 0 ? 1 : size), &std::free);
    if (block) {
        const std::lock_guard lock(Memory().mutex);
        Memory().blocks.insert(block.get());
    }
    return block.release();
}

void STDAPICALLTYPE CoTaskMemFree(LPVOID memory)
{
    if (memory == nullptr)
        return;
    {
        const std::lock_guard lock(Memory().mutex);
        if (Memory().blocks.erase(memory) == 0)
            Unsupported("CoTaskMemFree", "memory that is not task memory or was freed before");
    }
    std::free(memory);
}

HRESULT STDAPICALLTYPE CLSIDFromString(LPCWSTR text, LPCLSID classId)
{
    return Watched({"CLSIDFromString", {}, text == nullptr ? L"" : text}, [&]() -> HRESULT {
        if (classId == nullptr)
            return E_INVALIDARG;
        *classId = CLSID{};
        if (text == nullptr)
            return S_OK;
        std::string digits;
        for (int position = 0; position < ClassIdLength; ++position) {
            const char form = ClassIdForm[position];
            const WCHAR unit = text[position];
            if (form == 'x' ? HexDigit(unit) < 0 : unit != static_cast<WCHAR>(form))
                return CO_E_CLASSSTRING;
            if (form == 'x')
                digits += static_cast<char>(unit);
        }
        if (text[ClassIdLength] != L'\0')
            return CO_E_CLASSSTRING;
        const auto number = [&digits](std::size_t start, std::size_t count) {
            return static_cast<std::uint32_t>(std::stoul(digits.substr(start, count), nullptr, 16));
        };
        classId->Data1 = number(0, 8);
        classId->Data2 = static_cast<std::uint16_t>(number(8, 4));
        classId->Data3 = static_cast<std::uint16_t>(number(12, 4));
        for (std::size_t index = 0; index < 8; ++index)
            classId->Data4[index] = static_cast<std::uint8_t>(number(16 + 2 * index, 2));
        return S_OK;
    });
}

HRESULT STDAPICALLTYPE StringFromCLSID(REFCLSID classId, LPWSTR* text)
{
    *text = nullptr;
    const std::wstring written = winapi::internal::ClassIdText(classId);
    return Watched({"StringFromCLSID", {}, written}, [&]() -> HRESULT {
        *text = static_cast<LPWSTR>(CoTaskMemAlloc(sizeof(WCHAR) * (written.size() + 1)));
        if (*text == nullptr)
            return E_OUTOFMEMORY;
        std::copy_n(written.c_str(), written.size() + 1, *text);
        return S_OK;
    });
}

HRESULT STDAPICALLTYPE PropVariantClear(PROPVARIANT* value)
{
    if (value->vt == VT_LPWSTR)
        CoTaskMemFree(value->pwszVal);
    else if (value->vt != VT_EMPTY && value->vt != VT_UI4)
        Unsupported("PropVariantClear", "a type other than empty, text and 32-bit number");
    *value = PROPVARIANT{};
    return S_OK;
}
