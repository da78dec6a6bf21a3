// What the firmware walk asks of the driver, byte for byte, and what a hostile driver or topology cannot do to it.
#include "FirmwareMachines.h"
#include "fwdiscovery/PartsWalk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace {

using machine::Bytes;

TEST(FwDiscovery, AsksTheFiltersOffloadPinByteForByte)
{
    machine::MachineDescription described = Machine(eRender, StraightPath(0x1A002));
    described.devices[0].filter->audioEngineNodes = {{0xA002, 4, 0x12345605, 6}};
    described.devices[0].filter->pins[0].pinId = 0x12345605;
    const FwRun render(described);
    // Property set (in its memory layout), property id, flags, pin or node, reserved; the list request's selector.
    const std::string descriptor = "dc822f3a6f88aa4b9eb4082b9025c536" + std::string("060000000100001002a0000000000000");
    const std::string version = "37cee9ba99aac74b9bdf4cbf3d23e1b9" + std::string("00000000010000000556341200000000");
    const std::string list = "37cee9ba99aac74b9bdf4cbf3d23e1b9" + std::string("01000000010000000556341200000000") +
                             "7e2f8ec13d936549b7d11eef228d2af3";
    const std::vector<std::string> requests = {descriptor + ", data 12", version + ", data 5", list + ", no data 0",
                                               list + ", data 156"};
    EXPECT_EQ(render.Arguments("IKsControl::KsProperty"), requests);
    EXPECT_EQ(render.machine.Selection({Adapter, 0x20007}), 0x10001u);
    ASSERT_EQ(render.modules.size(), 1u);
    EXPECT_EQ(render.modules[0].PropertyPinId, 0x12345605u);
    EXPECT_TRUE(render.modules[0].KsControl);
}

TEST(FwDiscovery, TakesNothingFromAReplyThatDoesNotHoldWhatItPromises)
{
    const Bytes one = machine::ModuleListReply({{1, Spatialf}});
    const auto claiming = [&one](std::uint32_t count) {
        Bytes reply = one;
        for (int index = 0; index < 4; ++index)
            reply[4 + static_cast<std::size_t>(index)] = static_cast<std::uint8_t>((count >> (8 * index)) & 0xFF);
        return reply;
    };
    const auto cut = [&one](std::size_t size) { return Bytes(one.begin(), one.begin() + static_cast<long>(size)); };
    const struct {
        const char* name;
        machine::PpApiPin pin;
        std::size_t modules;
        const wchar_t* count;  // as logged; null: not logged
    } rows[] = {
        {"as it should be", {5, {1}, one, {}, {}}, 1, L"1"},
        {"room behind the modules", {5, {1}, one, 1000, {}}, 1, L"1"},
        {"no bytes", {5, {1}, Bytes{}, {}, {}}, 0, nullptr},
        {"seven bytes", {5, {1}, cut(7), {}, {}}, 0, nullptr},
        {"head alone", {5, {1}, cut(8), {}, {}}, 0, L"1"},
        {"a byte short", {5, {1}, cut(155), {}, {}}, 0, L"1"},
        {"two promised", {5, {1}, claiming(2), {}, {}}, 0, L"2"},
        {"as many as can be said", {5, {1}, claiming(0xFFFFFFFF), {}, {}}, 0, L"4294967295"},
        {"times 148 overflows to 0", {5, {1}, claiming(0x40000000), {}, {}}, 0, L"1073741824"},
        {"fewer bytes returned than asked", {5, {1}, one, {}, 155}, 0, L"1"},
        {"hardly any returned", {5, {1}, one, {}, 7}, 0, nullptr},
        {"more bytes returned than asked", {5, {1}, one, 60, 0xFFFFFFFF}, 0, L"1"},
        {"no byte count returned", {5, {1}, one, {}, 0}, 1, L"1"},
        {"256 KiB", {5, {1}, one, 262144, {}}, 1, L"1"},
        {"more than 256 KiB", {5, {1}, one, 262145, {}}, 0, nullptr},
        {"four gigabytes", {5, {1}, one, 0xFFFFFFFF, {}}, 0, nullptr},
        {"no version bytes", {5, {}, one, {}, {}}, 0, nullptr},
        {"another version", {5, {2, 1, 1, 1, 1}, one, {}, {}}, 0, nullptr},
        {"a version longer than asked", {5, Bytes(4096, 1), one, {}, {}}, 1, L"1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        machine::MachineDescription described = Machine(eRender, StraightPath());
        described.devices[0].filter->pins = {row.pin};
        const FwRun run(described);
        EXPECT_EQ(run.message, "(nothing thrown)");
        EXPECT_EQ(run.modules.size(), row.modules);
        std::wstring logged;
        for (const std::wstring& text : run.logger.Texts())
            logged += text.starts_with(L"Modules count:") ? text : L"";
        EXPECT_EQ(logged,
                  row.count == nullptr ? L"" : std::wstring(L"Modules count:") + row.count + L" modules size:156");
    }
}

TEST(FwDiscovery, ReadsZerosWhereTheDriverWroteNothing)
{
    machine::MachineDescription described = ScannedMachine({0x10002, 0x1FF02});
    const Bytes one = machine::ModuleListReply({{2, Spatialf}});
    const Bytes head(one.begin(), one.begin() + 8);
    described.devices[0].filter->pins = {{2, {1}, one, {}, {}}, {0xFF02, {1}, head, 156, 0}};
    const FwRun run(described);
    ASSERT_EQ(run.modules.size(), 2u);
    EXPECT_TRUE(run.modules[0].ModuleGuid == Spatialf);
    EXPECT_EQ(run.modules[1].PropertyPinId, 0xFF02u);
    EXPECT_TRUE(run.modules[1].ModuleGuid == GUID{});
    EXPECT_EQ(run.modules[1].Type, qov::ModuleType::SFX);
}

TEST(FwDiscovery, BoundsWhatOneEndpointMayCost)
{
    // More pins than are scanned; the first connector of the filter is none. All list 100 modules, but for the last.
    std::vector<UINT> ids(1100);
    std::iota(ids.begin(), ids.end(), 0x10002);
    machine::MachineDescription described = ScannedMachine(ids);
    const auto reply = [](std::size_t count) {
        return machine::ModuleListReply(std::vector<machine::FwModuleEntry>(count, {1, Spatialf}));
    };
    for (ULONG pin = 2; pin <= 1023; ++pin)
        described.devices[0].filter->pins.push_back({pin, {1}, reply(100), {}, {}});
    described.devices[0].filter->pins.push_back({1024, {1}, reply(24), {}, {}});
    described.endpoints[0].properties = {{L"{233164c8-1b2c-4c7d-bc68-b671687a2567},1", REG_SZ, {}}};

    const FwRun run(described);
    EXPECT_EQ(run.message, "(nothing thrown)");
    ASSERT_EQ(run.modules.size(), 1024u) << "ten pins, and the last";
    EXPECT_EQ(run.modules[999].PropertyPinId, 11u);
    EXPECT_EQ(run.modules[1000].PropertyPinId, 1024u);
    const auto texts = run.logger.Texts();
    EXPECT_EQ(std::count_if(texts.begin(), texts.end(), [](const auto& text) { return text.starts_with(L"[REG_SZ]"); }),
              1024);
    EXPECT_LE(run.Arguments("RegQueryValueExW").size(), 2u * 1024);
    EXPECT_EQ(run.Arguments("IKsControl::KsProperty").size(), 3u * 1023);
}

// A part whose neighbours cannot be listed: the walk drops it and goes on with the next.
constexpr char DeadEnd[] = "adapter/0002ffff";

// Every part leads to all of them.
std::vector<PartDescription> BranchingRing(UINT size)
{
    std::vector<UINT> all(size);
    std::iota(all.begin(), all.end(), 0x20000);
    std::vector<PartDescription> parts = {ConnectorPart(0x10001, Physical_Internal, all)};
    for (const UINT id : all)
        parts.push_back(SubunitPart(id, all));
    return parts;
}

TEST(FwDiscovery, EndsOnTopologiesThatLeadBackToThemselves)
{
    std::vector<PartDescription> connectorRing = {ConnectorPart(0x10001, Physical_Internal, {0x10002}),
                                                  ConnectorPart(0x10002, Physical_Internal)};
    connectorRing[1].connectedTo = machine::PartAddress{Adapter, 0x10001};
    std::vector<PartDescription> chain = {ConnectorPart(0x10001, Physical_Internal, {0})};
    for (UINT id = 0; id < qov::MaxWalkDepth; ++id)
        chain.push_back(SubunitPart(id, {id + 1}));
    chain.push_back(ConnectorPart(qov::MaxWalkDepth, Software_IO));
    const auto wide = std::vector<UINT>(100000, 0x2FFFF);

    const struct {
        const char* name;
        std::vector<PartDescription> parts;
    } rows[] = {
        {"its own neighbour", {ConnectorPart(0x10001, Physical_Internal, {0x20000}), SubunitPart(0x20000, {0x20000})}},
        {"its own neighbour before the way out",
         {ConnectorPart(0x10001, Physical_Internal, {0x20000}), SubunitPart(0x20000, {0x20000, 0x10002}),
          ConnectorPart(0x10002, Software_IO)}},
        {"two in a ring",
         {ConnectorPart(0x10001, Physical_Internal, {0x20000}), SubunitPart(0x20000, {0x20001}),
          SubunitPart(0x20001, {0x20000}, SelectorKind::Output)}},
        {"branching ring", BranchingRing(30)},
        {"connectors in a ring", connectorRing},
        {"a path too long to be one", chain},
        {"a list without end", {ConnectorPart(0x10001, Physical_Internal, wide), SubunitPart(0x2FFFF, {})}},
    };
    for (const auto& row : rows) {
        for (const EDataFlow flow : {eRender, eCapture}) {
            SCOPED_TRACE(std::string(row.name) + (flow == eRender ? ", render" : ", capture"));
            machine::MachineDescription described = Machine(flow, row.parts);
            for (const char* const call : {"IPart::EnumPartsIncoming", "IPart::EnumPartsOutgoing"})
                described.faults.push_back({call, {}, E_FAIL, DeadEnd});
            const FwRun run(described);
            EXPECT_EQ(run.message, "(nothing thrown)");
            EXPECT_FALSE(run.Logged(L"Found a Software_IO connector for current device"));
            EXPECT_LE(run.machine.Calls().size(), 20 * qov::MaxWalkedParts + 100);
        }
    }
}

TEST(FwDiscovery, FailedCallsOfTheWalkEndWhatTheyMust)
{
    const auto straight = StraightPath();
    // A subunit that leads to a software pin, and beside it another software pin.
    const std::vector<PartDescription> forked = {ConnectorPart(0x10001, Physical_Internal, {0x20007, 0x10002}),
                                                 SubunitPart(0x20007, {0x10003}), ConnectorPart(0x10002, Software_IO),
                                                 ConnectorPart(0x10003, Software_IO)};
    const struct {
        const char* call;
        std::vector<PartDescription> parts;
        const char* object;
        std::size_t modules;
        const wchar_t* logged;
    } rows[] = {
        {"IPartsList::GetPart", forked, "adapter/00010001", 0, L"*** NEXT CONNECTOR ***"},
        {"IPart::GetPartType", forked, "adapter/00020007", 0, L"*** NEXT CONNECTOR ***"},
        {"IPartsList::GetCount", forked, "adapter/00020007", 1, L"End of parts: replacing connector"},
        {"IMMDevice::Activate", forked, "adapter", 1, L"Using pin id:5\nTesting PP API: comparing versions..."},
        {"IPart::QueryInterface", straight, "adapter/00010002", 0, L"End of parts: replacing connector"},
        {"IPart::GetTopologyObject", straight, "adapter/00020007", 0, L"Trying to read offload pin id..."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        machine::MachineDescription described = Machine(eRender, row.parts);
        described.devices[0].topology.signalPaths = {{0x10002, 0x10003}};
        described.faults = {{row.call, 1, E_FAIL, row.object}};
        const FwRun run(described);
        EXPECT_EQ(run.modules.size(), row.modules);
        EXPECT_TRUE(run.Logged(row.logged));
        EXPECT_FALSE(run.Logged(L"Using pin id:3\nTesting PP API: comparing versions...")) << "no pin was missing";
    }
}

}  // namespace
