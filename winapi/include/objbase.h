// The COM library: apartments, class objects, task memory and the text of class ids.
#pragma once

#include <unknwn.h>

#include <cstddef>

enum COINIT : DWORD {
    COINIT_MULTITHREADED = 0x0,
    COINIT_APARTMENTTHREADED = 0x2,
    COINIT_DISABLE_OLE1DDE = 0x4,
};

enum CLSCTX : DWORD {
    CLSCTX_INPROC_SERVER = 0x1,
    CLSCTX_INPROC_HANDLER = 0x2,
    CLSCTX_LOCAL_SERVER = 0x4,
    CLSCTX_REMOTE_SERVER = 0x10,
};
constexpr DWORD CLSCTX_ALL = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

enum REGCLS : DWORD { REGCLS_MULTIPLEUSE = 1 };

constexpr DWORD STGM_READ = 0;

HRESULT STDAPICALLTYPE CoInitializeEx(LPVOID reserved, DWORD apartment);
void STDAPICALLTYPE CoUninitialize();
HRESULT STDAPICALLTYPE CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID riid, LPVOID* object);
HRESULT STDAPICALLTYPE CoRegisterClassObject(REFCLSID classId, IUnknown* factory, DWORD context, DWORD flags,
                                             LPDWORD cookie);
HRESULT STDAPICALLTYPE CoRevokeClassObject(DWORD cookie);

LPVOID STDAPICALLTYPE CoTaskMemAlloc(std::size_t size);
void STDAPICALLTYPE CoTaskMemFree(LPVOID memory);

// Only the braced form of 38 characters is read; a program id gives CO_E_CLASSSTRING, as where none is registered.
HRESULT STDAPICALLTYPE CLSIDFromString(LPCWSTR text, LPCLSID classId);
HRESULT STDAPICALLTYPE StringFromCLSID(REFCLSID classId, LPWSTR* text);
