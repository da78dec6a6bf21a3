#pragma once

#include "common/ComPtr.h"
#include "machine/TopologyDescription.h"
#include "snapshot/Answers.h"
#include "snapshot/TopologySurvey.h"

#include <mmdeviceapi.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace snapshot {

// What the driver's filters answer to the requests that a run may make.
class FilterReading {
public:
    FilterReading(IMMDeviceEnumerator& enumerator, TopologySurvey& survey, Answers& answers)
        : enumerator_(enumerator), survey_(survey), answers_(answers)
    {
    }

    // Those for an endpoint, from the connector parts at which its walk may end.
    void Read(const std::vector<machine::PartAddress>& ends, EDataFlow flow);

    // None where the device has no control.
    std::optional<machine::FilterDescription> Describe(const std::wstring& deviceId);

private:
    struct Filter {
        qov::ComPtr<IKsControl> control;
        std::map<ULONG, std::optional<machine::AudioEngineNode>> nodes;  // that were asked
        std::map<ULONG, std::optional<machine::PpApiPin>> pins;
    };

    Filter& Find(const std::wstring& deviceId);
    std::optional<ULONG> OffloadPin(const machine::PartAddress& connector);
    std::optional<machine::PpApiPin> ReadPin(const std::wstring& deviceId, IKsControl& control, ULONG pinId);
    void ReadModuleList(const std::wstring& deviceId, IKsControl& control, machine::PpApiPin& pin);

    IMMDeviceEnumerator& enumerator_;
    TopologySurvey& survey_;
    Answers& answers_;
    std::map<std::wstring, Filter> filters_;
};

}  // namespace snapshot
