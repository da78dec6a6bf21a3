#include "fuzz/MachineFromBytes.h"

#include "machine/PlatformCalls.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

using namespace machine;

namespace {

const std::wstring DriverIds[] = {L"driver-0", L"driver-1"};

// What the run looks for, and what is none of it.
const std::wstring ClassIds[] = {L"{272B1E6E-1E98-4476-B3F0-1A4654BE1089}",
                                 L"{e69e0626-bcb3-441c-a43c-663464298842}",
                                 L"{91E0C6D4-55AB-4B07-8D3E-20F1A6B7C859}",
                                 L"{272B1E6E-1E98",
                                 L"",
                                 L"{}{}"};
const std::wstring EffectKey = L"{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},";
const std::wstring ListKey = L"{bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5";
const std::wstring PathKey = L"{233164c8-1b2c-4c7d-bc68-b671687a2567},1";
const std::wstring DevicePaths[] = {
    L"{2}.\\\\?\\hdaudio#func_01&ven_10ec#4&1#{6994ad04-93ef-11d0-a3cc-00a0c9223196}\\espeakertopo00",
    L"{2}.\\\\?\\a#b&c\n#d#e\\f\"-->00", L"a\\b\\c\\d\\e", L""};
constexpr GUID SpatialfModule{0x7C708106, 0x3AFF, 0x40FE, {0x88, 0xBE, 0x8C, 0x99, 0x9B, 0x3F, 0x74, 0x45}};
constexpr DWORD Types[] = {REG_SZ, REG_BINARY, REG_DWORD, REG_EXPAND_SZ, REG_MULTI_SZ, REG_NONE, 11, 99};
constexpr LONG Results[] = {E_FAIL, S_FALSE, E_NOINTERFACE, ERROR_ACCESS_DENIED, 0x7FFFFFFF, LONG{E_OUTOFMEMORY}};

constexpr const char* Objects[] = {"endpoint-0",        "endpoint-1",          "driver-0",
                                   "driver-1",          "endpoint-0/00000000", "endpoint-0/00000001",
                                   "driver-0/00000000", "driver-0/00000001",   "driver-0/00000002"};

class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    std::size_t Choice(std::size_t count)
    {
        while (next_ != end_ && (*next_ == ' ' || *next_ == '\n'))
            ++next_;
        return next_ == end_ ? 0 : static_cast<std::uint8_t>(*next_++ - '0') % count;
    }

    // As Choice, but the first is `usual`, then those after it and around.
    std::size_t Choice(std::size_t count, std::size_t usual) { return (Choice(count) + usual) % count; }

    template <class Table>
    auto Of(const Table& table)
    {
        return table[Choice(std::size(table))];
    }

    std::uint8_t Byte() { return next_ == end_ ? std::uint8_t{0} : *next_++; }

private:
    const std::uint8_t* next_;
    const std::uint8_t* const end_;
};

class Maker : private Choices {
public:
    using Choices::Choices;

    MachineDescription Machine()
    {
        MachineDescription machine;
        constexpr WindowsVersion Versions[] = {{10, 0}, {6, 3}, {6, 2}, {6, 1}};
        machine.windowsVersion = Of(Versions);
        for (std::size_t count = 1 + Choice(3); machine.endpoints.size() < count;)
            machine.endpoints.push_back(MakeEndpoint(static_cast<std::uint8_t>(machine.endpoints.size())));
        for (std::size_t count = Choice(3, 1); machine.devices.size() < count;) {
            TopologyDescription topology = MakeTopology(Side::Driver);
            machine.devices.push_back({DriverIds[machine.devices.size()], std::move(topology), MakeFilter()});
        }
        if (Choice(4) == 3)
            machine.furtherRenderKeys = {Of(ClassIds) + L"x"};
        for (std::size_t count = Choice(5); machine.faults.size() < count;)
            machine.faults.push_back(MakeFault());
        return machine;
    }

private:
    enum class Side { Endpoint, Driver };

    Bytes MakeBytes()
    {
        Bytes bytes(Choice(64));
        for (std::uint8_t& byte : bytes)
            byte = Byte();
        return bytes;
    }

    // A number of 32 bits: small, about the bounds, or as large as it can be.
    std::uint32_t MakeNumber()
    {
        constexpr std::uint32_t Numbers[] = {0,   1,    2,    7,      8,      147,        148,
                                             156, 1024, 1025, 262144, 262145, 0x7FFFFFFF, 0xFFFFFFFF};
        return Of(Numbers);
    }

    RegistryValue MakeValue(const std::wstring& name)
    {
        RegistryValue value{name, Of(Types), {}};
        switch (Choice(4)) {
            case 0: {
                const std::wstring text = name == PathKey ? Of(DevicePaths) : Of(ClassIds);
                value.data = TextData(text, static_cast<unsigned>(Choice(3, 1)));
                break;
            }
            case 1: {
                constexpr const wchar_t* Slots[] = {L"5", L"6", L"7", L"1", L"2", L"-1x", L"", L"99999999999", L"5,"};
                std::wstring list;
                for (std::size_t count = Choice(4); count > 0; --count) {
                    list += Of(ClassIds) + L",";
                    list += std::wstring(Of(Slots)) + L";";
                }
                value.data = TextData(list, static_cast<unsigned>(Choice(3, 1)));
                break;
            }
            default:
                value.data = MakeBytes();
        }
        return value;
    }

    Endpoint MakeEndpoint(std::uint8_t number)
    {
        Endpoint endpoint;
        endpoint.guid = {0x1cfc615f, 0xa177, 0x452f, {0, 0, 0, 0, 0, 0, 0, number}};
        endpoint.flow = Choice(3) == 2 ? eCapture : eRender;
        endpoint.state = Choice(4) == 3 ? DEVICE_STATE_DISABLED : DEVICE_STATE_ACTIVE;
        endpoint.deviceId = L"endpoint-" + std::to_wstring(number);
        endpoint.guidPropertyText = Choice(8) == 7 ? Of(ClassIds) : UpperGuidText(endpoint.guid);
        endpoint.registered = Choice(8) != 7;
        if (endpoint.registered && Choice(4) != 3)
            endpoint.properties = {MakeValue(PathKey)};
        if (endpoint.registered && Choice(2) == 0) {
            endpoint.fxProperties.emplace();
            // The first endpoint has an effect on its streams.
            const std::wstring usual = number == 0 ? EffectKey + L"5" : L"";
            for (const std::wstring& name : {EffectKey + L"5", EffectKey + L"1", EffectKey + L"6", ListKey})
                if (Choice(2, name == usual ? 1 : 0) == 1)
                    endpoint.fxProperties->push_back(MakeValue(name));
        }
        endpoint.topology = MakeTopology(Side::Endpoint);
        return endpoint;
    }

    // Of an endpoint, a connector that is joined to the driver's first; of a driver, that and a software connector
    // before it, with a signal path.
    TopologyDescription MakeTopology(Side side)
    {
        const bool driver = side == Side::Driver;
        TopologyDescription topology;
        const std::size_t count = Choice(16) == 15 ? 0 : (driver ? 2 : 1) + Choice(5);
        for (UINT id = 0; id < count; ++id) {
            PartDescription part;
            part.localId = id;
            switch (id == 0 ? 0 : Choice(3)) {
                case 0:
                    part.connectorType = Of(std::to_array({Software_IO, Physical_Internal, Unknown_Connector}));
                    if (Choice(2, driver ? 1 : 0) == 0)
                        part.connectedTo = {Choice(8) == 7 ? L"endpoint-0" : Of(DriverIds),
                                            static_cast<UINT>(Choice(6))};
                    break;
                case 1:
                    part.selector = Of(std::to_array({SelectorKind::Input, SelectorKind::Output}));
                    break;
                default:
                    break;
            }
            part.incoming = MakeNeighbours(id);
            part.outgoing = MakeNeighbours(id);
            topology.parts.push_back(part);
        }
        for (std::size_t paths = Choice(3, driver ? 1 : 0); topology.signalPaths.size() < paths;)
            topology.signalPaths.push_back({static_cast<UINT>(Choice(6, 1)), static_cast<UINT>(Choice(6))});
        return topology;
    }

    // The next part, or several, or none, or no list; maybe parts that are not there.
    std::optional<std::vector<UINT>> MakeNeighbours(UINT id)
    {
        const std::size_t count = Choice(4, 1);
        if (count == 3)
            return std::nullopt;
        std::vector<UINT> neighbours;
        while (neighbours.size() < count)
            neighbours.push_back(static_cast<UINT>(Choice(7, id + 1)));
        return neighbours;
    }

    std::optional<FilterDescription> MakeFilter()
    {
        if (Choice(6) == 5)
            return std::nullopt;
        FilterDescription filter;
        for (std::size_t count = Choice(3, 1); filter.audioEngineNodes.size() < count;)
            filter.audioEngineNodes.push_back(
                {static_cast<ULONG>(1 + filter.audioEngineNodes.size()), MakeNumber(), MakeNumber(), MakeNumber()});
        for (std::size_t count = Choice(4, 1); filter.pins.size() < count;)
            filter.pins.push_back(MakePin(static_cast<ULONG>(filter.pins.size())));
        return filter;
    }

    PpApiPin MakePin(ULONG id)
    {
        PpApiPin pin;
        pin.pinId = id;
        pin.version = Choice(4) == 3 ? MakeBytes() : Bytes{1, 0, 0, 0, 0};
        if (Choice(4) == 3)
            return pin;
        std::vector<FwModuleEntry> modules(Choice(5, 1));
        for (FwModuleEntry& module : modules)
            module = {static_cast<std::uint32_t>(Choice(4)), Choice(4) == 3 ? GUID{} : SpatialfModule};
        pin.reply = ModuleListReply(modules);
        if (Choice(3) == 2) {
            const Bytes bytes = MakeBytes();
            std::copy_n(bytes.begin(), std::min(bytes.size(), pin.reply->size()), pin.reply->begin());
            pin.reply->resize(pin.reply->size() - Choice(pin.reply->size() + 1));
        }
        if (Choice(4) == 3)
            pin.reportedSize = MakeNumber();
        if (Choice(4) == 3)
            pin.returnedSize = MakeNumber();
        pin.leavesReturnedSize = !pin.returnedSize && Choice(4) == 3;
        return pin;
    }

    Fault MakeFault()
    {
        const PlatformCall& call = Of(PlatformCalls());
        Fault fault{std::string(call.name), {}, Of(Results)};
        if (Choice(3) == 2)
            fault.object = Of(Objects);
        else if (Choice(4) != 3)
            fault.occurrence = 1 + static_cast<unsigned>(Choice(40));
        if (!call.CanGive(fault.result))
            fault.result = call.result == ResultKind::HResult ? LONG{E_FAIL} : LONG{ERROR_ACCESS_DENIED};
        return fault;
    }
};

}  // namespace

MachineDescription MachineFromBytes(const std::uint8_t* data, std::size_t size) { return Maker(data, size).Machine(); }
