// Small machines with a firmware filter, and a run of the firmware discovery on one.
#pragma once

#include "fwdiscovery/FwDiscovery.h"
#include "simulation/SimulatedMachine.h"
#include "support/ComApartment.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"

#include <algorithm>
#include <string>
#include <vector>

using machine::PartDescription;
using machine::SelectorKind;

constexpr GUID Spatialf{0x7C708106, 0x3AFF, 0x40FE, {0x88, 0xBE, 0x8C, 0x99, 0x9B, 0x3F, 0x74, 0x45}};
constexpr wchar_t Adapter[] = L"adapter";

inline PartDescription SubunitPart(UINT id, const std::vector<UINT>& neighbours,
                                   SelectorKind selector = SelectorKind::None)
{
    return {id, {}, {}, neighbours, neighbours, selector};
}

inline PartDescription ConnectorPart(UINT id, ConnectorType type, const std::vector<UINT>& neighbours = {})
{
    PartDescription part = SubunitPart(id, neighbours);
    part.connectorType = type;
    return part;
}

// One endpoint whose connector leads to part 0x10001 of an adapter; the filter answers on pin 5.
inline machine::MachineDescription Machine(EDataFlow flow, std::vector<PartDescription> parts)
{
    machine::MachineDescription machine;
    machine::Endpoint endpoint;
    endpoint.guid = {1, 2, 3, {4}};
    endpoint.flow = flow;
    endpoint.deviceId = L"endpoint";
    endpoint.guidPropertyText = machine::UpperGuidText(endpoint.guid);
    endpoint.topology.parts.front().connectedTo = machine::PartAddress{Adapter, 0x10001};
    machine.endpoints = {endpoint};
    machine::AdapterDevice adapter{Adapter, {std::move(parts), {}}, machine::FilterDescription{}};
    adapter.filter->audioEngineNodes = {{0x2, 4, 5, 6}};
    adapter.filter->pins = {{5, {1}, machine::ModuleListReply({{1, Spatialf}}), {}, {}}};
    machine.devices = {adapter};
    return machine;
}

inline std::vector<PartDescription> StraightPath(UINT end = 0x10002)
{
    return {ConnectorPart(0x10001, Physical_Internal, {0x20007}), SubunitPart(0x20007, {end}, SelectorKind::Input),
            ConnectorPart(end, Software_IO)};
}

// A capture endpoint whose walk ends at the first of these software pins and finds the way to the others.
inline machine::MachineDescription ScannedMachine(const std::vector<UINT>& softwarePins)
{
    std::vector<PartDescription> parts = {ConnectorPart(0x10001, Physical_Internal, {softwarePins.front()})};
    for (const UINT id : softwarePins)
        parts.push_back(ConnectorPart(id, Software_IO));
    machine::MachineDescription machine = Machine(eCapture, parts);
    for (const UINT id : softwarePins)
        machine.devices[0].topology.signalPaths.emplace_back(softwarePins.front(), id);
    machine.devices[0].filter->pins.clear();
    return machine;
}

struct FwRun {
    explicit FwRun(const machine::MachineDescription& description) : machine(description)
    {
        message = MessageOf([&] { modules = qov::AudioModulesUtils::DiscoverFwModules(logger); });
    }

    [[nodiscard]] std::vector<std::string> Arguments(std::string_view call) const
    {
        std::vector<std::string> arguments;
        for (const simulation::CallRecord& record : machine.Calls())
            if (record.call == call)
                arguments.push_back(record.arguments);
        return arguments;
    }
    [[nodiscard]] bool Logged(const std::wstring& text) const
    {
        const auto texts = logger.Texts();
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }

    ComApartment apartment;
    simulation::SimulatedMachine machine;
    RecordingLogger logger;
    qov::ModuleList modules;
    std::string message;
};
