// The multimedia device API: the endpoints of the machine, each interface in its published method order.
#pragma once

#include <propsys.h>

enum EDataFlow { eRender = 0, eCapture = 1, eAll = 2 };
enum ERole { eConsole = 0, eMultimedia = 1, eCommunications = 2 };

constexpr DWORD DEVICE_STATE_ACTIVE = 0x1;
constexpr DWORD DEVICE_STATE_DISABLED = 0x2;
constexpr DWORD DEVICE_STATE_NOTPRESENT = 0x4;
constexpr DWORD DEVICE_STATE_UNPLUGGED = 0x8;
constexpr DWORD DEVICE_STATEMASK_ALL = 0xF;

struct IMMNotificationClient;

struct IMMDevice : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Activate(REFIID riid, DWORD context, PROPVARIANT* parameters, void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD access, IPropertyStore** store) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetId(LPWSTR* id) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetState(DWORD* state) = 0;
};
WINAPI_UUID(IMMDevice, 0xd666063f, 0x1587, 0x4e43, 0x81, 0xf1, 0xb9, 0x48, 0xe8, 0x07, 0x36, 0x3f)

struct IMMDeviceCollection : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Item(UINT index, IMMDevice** device) = 0;
};
WINAPI_UUID(IMMDeviceCollection, 0x0bd7a1be, 0x7a1a, 0x44db, 0x83, 0x97, 0xcc, 0x53, 0x92, 0x38, 0x7b, 0x5e)

struct IMMEndpoint : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetDataFlow(EDataFlow* flow) = 0;
};
WINAPI_UUID(IMMEndpoint, 0x1be09788, 0x6894, 0x4089, 0x85, 0x86, 0x9a, 0x2a, 0x6c, 0x26, 0x5a, 0xc5)

struct IMMDeviceEnumerator : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE EnumAudioEndpoints(EDataFlow flow, DWORD stateMask,
                                                         IMMDeviceCollection** devices) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role, IMMDevice** endpoint) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDevice(LPCWSTR id, IMMDevice** device) = 0;
    virtual HRESULT STDMETHODCALLTYPE RegisterEndpointNotificationCallback(IMMNotificationClient* client) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterEndpointNotificationCallback(IMMNotificationClient* client) = 0;
};
WINAPI_UUID(IMMDeviceEnumerator, 0xa95664d2, 0x9614, 0x4f35, 0xa7, 0x46, 0xde, 0x8d, 0xb6, 0x36, 0x17, 0xe6)

class MMDeviceEnumerator;
WINAPI_UUID(MMDeviceEnumerator, 0xbcde0395, 0xe52f, 0x467c, 0x8e, 0x3d, 0xc4, 0x57, 0x92, 0x91, 0x69, 0x2e)
