// What a discovery asks of the platform, counted: the same for every endpoint and pin, however many there are.
#include "FirmwareMachines.h"
#include "machine/PlatformCalls.h"

#include <gtest/gtest.h>

#include <map>
#include <numeric>

namespace {

using Counts = std::map<std::string, std::size_t>;

// Of the simulated objects: Windows' own functions are recorded over the stand-in alone.
Counts CallsOf(const machine::MachineDescription& description)
{
    Counts counts;
    const FwRun run(description);
    for (const simulation::CallRecord& call : run.machine.Calls())
        if (!machine::FindPlatformCall(call.call)->IsFunction())
            ++counts[call.call];
    return counts;
}

Counts Sum(Counts counts, const Counts& more, std::size_t times)
{
    for (const auto& [call, count] : more)
        counts[call] += count * times;
    return counts;
}

TEST(DiscoveryCostTest, AsksEveryEndpointAndPinTheSame)
{
    const Counts once{{"IMMDeviceEnumerator::EnumAudioEndpoints", 1}, {"IMMDeviceCollection::GetCount", 1}};
    // A way of one hop over one selector to a filter with two connectors, whose offload pin lists its modules.
    const Counts endpoint{{"IMMDeviceCollection::Item", 1},
                          {"IMMDevice::GetId", 1},
                          {"IMMDevice::OpenPropertyStore", 1},
                          {"IPropertyStore::GetValue", 1},
                          {"IMMDevice::QueryInterface", 1},
                          {"IMMEndpoint::GetDataFlow", 1},
                          {"IMMDevice::Activate", 3},
                          {"IDeviceTopology::GetConnector", 3},
                          {"IConnector::IsConnected", 2},
                          {"IConnector::GetType", 3},
                          {"IConnector::GetConnectorIdConnectedTo", 1},
                          {"IConnector::GetDeviceIdConnectedTo", 1},
                          {"IConnector::GetConnectedTo", 1},
                          {"IConnector::QueryInterface", 3},
                          {"IPart::QueryInterface", 1},
                          {"IPart::EnumPartsIncoming", 2},
                          {"IPartsList::GetCount", 2},
                          {"IPartsList::GetPart", 2},
                          {"IPart::GetPartType", 2},
                          {"IPart::Activate", 1},
                          {"IPart::GetLocalId", 2},
                          {"IAudioInputSelector::SetSelection", 1},
                          {"IPart::GetTopologyObject", 2},
                          {"IDeviceTopology::GetConnectorCount", 1},
                          {"IDeviceTopology::GetDeviceId", 2},
                          {"IMMDeviceEnumerator::GetDevice", 2},
                          {"IKsControl::KsProperty", 4}};
    for (const std::size_t count : {1U, 2U, 256U}) {
        machine::MachineDescription machine = Machine(eRender, StraightPath());
        machine.endpoints.resize(count, machine.endpoints.front());
        for (std::size_t index = 0; index < count; ++index)
            machine.endpoints[index].deviceId += std::to_wstring(index);
        EXPECT_EQ(CallsOf(machine), Sum(once, endpoint, count)) << count;
    }

    // A software pin that does not answer.
    const Counts pin{
        {"IDeviceTopology::GetConnector", 1},  {"IConnector::GetType", 1}, {"IConnector::QueryInterface", 1},
        {"IDeviceTopology::GetSignalPath", 1}, {"IPart::GetLocalId", 1},   {"IKsControl::KsProperty", 1}};
    const auto withPins = [](UINT count) {
        std::vector<UINT> pins(count);
        std::iota(pins.begin(), pins.end(), 0x10010);
        return CallsOf(ScannedMachine(pins));
    };
    for (const UINT more : {1U, 255U})
        EXPECT_EQ(withPins(1 + more), Sum(withPins(1), pin, more)) << more;
}

}  // namespace
