// The device topology API: the parts of an audio adapter and how they are connected, each interface in its published
// method order.
#pragma once

#include <ks.h>
#include <unknwn.h>

enum DataFlow { In = 0, Out = 1 };
enum PartType { Connector = 0, Subunit = 1 };
enum ConnectorType {
    Unknown_Connector = 0,
    Physical_Internal = 1,
    Physical_External = 2,
    Software_IO = 3,
    Software_Fixed = 4,
    Network = 5
};

constexpr HRESULT E_NOTFOUND = HRESULT_FROM_WIN32(ERROR_NOT_FOUND);

struct IConnector;
struct IControlChangeNotify;
struct IControlInterface;
struct IDeviceTopology;
struct IPart;
struct ISubunit;

struct IKsControl : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE KsProperty(PKSPROPERTY property, ULONG propertyLength, void* data,
                                                 ULONG dataLength, ULONG* bytesReturned) = 0;
    virtual HRESULT STDMETHODCALLTYPE KsMethod(PKSMETHOD method, ULONG methodLength, void* data, ULONG dataLength,
                                               ULONG* bytesReturned) = 0;
    virtual HRESULT STDMETHODCALLTYPE KsEvent(PKSEVENT event, ULONG eventLength, void* data, ULONG dataLength,
                                              ULONG* bytesReturned) = 0;
};
WINAPI_UUID(IKsControl, 0x28f54685, 0x06fd, 0x11d2, 0xb2, 0x7a, 0x00, 0xa0, 0xc9, 0x22, 0x31, 0x96)

struct IAudioInputSelector : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetSelection(UINT* localId) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSelection(UINT localId, LPCGUID eventContext) = 0;
};
WINAPI_UUID(IAudioInputSelector, 0x4f03dc02, 0x5e6e, 0x4653, 0x8f, 0x72, 0xa0, 0x30, 0xc1, 0x23, 0xd5, 0x98)

struct IAudioOutputSelector : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetSelection(UINT* localId) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSelection(UINT localId, LPCGUID eventContext) = 0;
};
WINAPI_UUID(IAudioOutputSelector, 0xbb515f69, 0x94a7, 0x429e, 0x8b, 0x9c, 0x27, 0x1b, 0x3f, 0x11, 0xa3, 0xab)

struct IPartsList : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPart(UINT index, IPart** part) = 0;
};
WINAPI_UUID(IPartsList, 0x6daa848c, 0x5eb0, 0x45cc, 0xae, 0xa5, 0x99, 0x8a, 0x2c, 0xda, 0x1f, 0xfb)

struct IPart : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetName(LPWSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetLocalId(UINT* localId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetGlobalId(LPWSTR* globalId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPartType(PartType* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubType(GUID* subType) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetControlInterfaceCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetControlInterface(UINT index, IControlInterface** control) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumPartsIncoming(IPartsList** parts) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumPartsOutgoing(IPartsList** parts) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTopologyObject(IDeviceTopology** topology) = 0;
    virtual HRESULT STDMETHODCALLTYPE Activate(DWORD context, REFIID riid, void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE RegisterControlChangeCallback(REFGUID riid, IControlChangeNotify* notify) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterControlChangeCallback(IControlChangeNotify* notify) = 0;
};
WINAPI_UUID(IPart, 0xae2de0e4, 0x5bca, 0x4f2d, 0xaa, 0x46, 0x5d, 0x13, 0xf8, 0xfd, 0xb3, 0xa9)

struct IConnector : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetType(ConnectorType* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDataFlow(DataFlow* flow) = 0;
    virtual HRESULT STDMETHODCALLTYPE ConnectTo(IConnector* other) = 0;
    virtual HRESULT STDMETHODCALLTYPE Disconnect() = 0;
    virtual HRESULT STDMETHODCALLTYPE IsConnected(BOOL* connected) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnectedTo(IConnector** other) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnectorIdConnectedTo(LPWSTR* connectorId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeviceIdConnectedTo(LPWSTR* deviceId) = 0;
};
WINAPI_UUID(IConnector, 0x9c2c4058, 0x23f5, 0x41de, 0x87, 0x7a, 0xdf, 0x3a, 0xf2, 0x36, 0xa0, 0x9e)

struct IDeviceTopology : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetConnectorCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnector(UINT index, IConnector** connector) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubunitCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubunit(UINT index, ISubunit** subunit) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPartById(UINT id, IPart** part) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeviceId(LPWSTR* deviceId) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSignalPath(IPart* from, IPart* to, BOOL rejectMixedPaths,
                                                    IPartsList** parts) = 0;
};
WINAPI_UUID(IDeviceTopology, 0x2a07407e, 0x6497, 0x4a18, 0x97, 0x87, 0x32, 0xf7, 0x9b, 0xd0, 0xd9, 0x8f)
