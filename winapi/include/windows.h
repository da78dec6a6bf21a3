// The part of <windows.h> that this project uses, with Windows' names, values and widths.
// `WCHAR` is `wchar_t`; each holds one UTF-16 code unit, whatever the width of `wchar_t` here.
#pragma once

#include <cstdint>
#include <cstring>

#define WINAPI
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using USHORT = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using ULONG_PTR = std::uintptr_t;
using WCHAR = wchar_t;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPDWORD = DWORD*;
using LPBYTE = BYTE*;
using LPVOID = void*;
using HRESULT = LONG;

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;

// --- GUIDs -------------------------------------------------------------------------------------------------------

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
static_assert(sizeof(GUID) == 16);

using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using LPCGUID = const GUID*;
using LPCLSID = CLSID*;

inline bool IsEqualGUID(REFGUID left, REFGUID right) { return std::memcmp(&left, &right, sizeof(GUID)) == 0; }
inline bool operator==(REFGUID left, REFGUID right) { return IsEqualGUID(left, right); }

// `__uuidof` is a keyword of Windows compilers; here every interface header specialises this template.
namespace winapi {
template <class Interface>
struct UuidOf;
}
#define __uuidof(type) (::winapi::UuidOf<type>::value)
#define WINAPI_UUID(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)              \
    template <>                                                                   \
    struct winapi::UuidOf<type> {                                                 \
        static constexpr GUID value{l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}; \
    };

// --- Result codes ------------------------------------------------------------------------------------------------

constexpr LONG ERROR_SUCCESS = 0;
constexpr LONG ERROR_FILE_NOT_FOUND = 2;
constexpr LONG ERROR_ACCESS_DENIED = 5;
constexpr LONG ERROR_INVALID_HANDLE = 6;
constexpr LONG ERROR_INVALID_PARAMETER = 87;
constexpr LONG ERROR_MORE_DATA = 234;
constexpr LONG ERROR_NO_MORE_ITEMS = 259;
constexpr LONG ERROR_KEY_DELETED = 1018;
constexpr LONG ERROR_CHILD_MUST_BE_VOLATILE = 1021;
constexpr LONG ERROR_OLD_WIN_VERSION = 1150;
constexpr LONG ERROR_NOT_FOUND = 1168;

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110u);
constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154u);
constexpr HRESULT CO_E_NOTINITIALIZED = static_cast<HRESULT>(0x800401F0u);
constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3u);
constexpr HRESULT RPC_E_CHANGED_MODE = static_cast<HRESULT>(0x80010106u);
constexpr HRESULT RPC_E_WRONG_THREAD = static_cast<HRESULT>(0x8001010Eu);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }
constexpr HRESULT HRESULT_FROM_WIN32(LONG code)
{
    return code <= 0 ? code : static_cast<HRESULT>((static_cast<std::uint32_t>(code) & 0xFFFFu) | 0x80070000u);
}

DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD code);

// --- Registry ----------------------------------------------------------------------------------------------------

struct HKEY__;
using HKEY = HKEY__*;
using PHKEY = HKEY*;
using REGSAM = DWORD;
using LSTATUS = LONG;
struct FILETIME;
struct SECURITY_ATTRIBUTES;

#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000001u)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000002u)))

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_DWORD_BIG_ENDIAN = 5;
constexpr DWORD REG_LINK = 6;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_QWORD = 11;

constexpr DWORD REG_OPTION_VOLATILE = 1;
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

LSTATUS WINAPI RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result);
LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                               const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition);
LSTATUS WINAPI RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classLength, LPDWORD reserved, LPDWORD subKeys,
                                LPDWORD maxSubKeyLength, LPDWORD maxClassLength, LPDWORD values,
                                LPDWORD maxValueNameLength, LPDWORD maxValueLength, LPDWORD securityDescriptor,
                                FILETIME* lastWrite);
LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved, LPWSTR keyClass,
                             LPDWORD classLength, FILETIME* lastWrite);
LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved, LPDWORD type,
                             LPBYTE data, LPDWORD size);
LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size);
LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LSTATUS WINAPI RegDeleteTreeW(HKEY key, LPCWSTR subKey);
LSTATUS WINAPI RegOverridePredefKey(HKEY key, HKEY replacement);
LSTATUS WINAPI RegCloseKey(HKEY key);

// --- Texts -------------------------------------------------------------------------------------------------------

constexpr int CSTR_LESS_THAN = 1;
constexpr int CSTR_EQUAL = 2;
constexpr int CSTR_GREATER_THAN = 3;

// Unit by unit; without regard to case, as the registry compares names.
int WINAPI CompareStringOrdinal(LPCWSTR left, int leftLength, LPCWSTR right, int rightLength, BOOL ignoreCase);

// --- Windows version ---------------------------------------------------------------------------------------------

struct OSVERSIONINFOEXW {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
    WORD wServicePackMajor;
    WORD wServicePackMinor;
    WORD wSuiteMask;
    BYTE wProductType;
    BYTE wReserved;
};

constexpr DWORD VER_MINORVERSION = 0x01;
constexpr DWORD VER_MAJORVERSION = 0x02;
constexpr DWORD VER_SERVICEPACKMAJOR = 0x20;
constexpr BYTE VER_GREATER_EQUAL = 3;

ULONGLONG WINAPI VerSetConditionMask(ULONGLONG mask, DWORD type, BYTE condition);
BOOL WINAPI VerifyVersionInfoW(OSVERSIONINFOEXW* version, DWORD typeMask, ULONGLONG conditionMask);
