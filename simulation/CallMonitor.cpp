#include "simulation/CallMonitor.h"

#include <algorithm>
#include <cassert>

namespace simulation {

std::optional<LONG> CallMonitor::EnterFunction(std::string_view call)
{
    const std::size_t record = Begin(call, {}, {});
    const std::optional<LONG> fault = FaultOf(calls_[record]);
    calls_[record].result = fault.value_or(0);
    return fault;
}

std::vector<machine::Fault> CallMonitor::FaultsThatNeverFired() const
{
    std::vector<machine::Fault> faults;
    for (const WatchedFault& watched : faults_)
        if (!watched.fired)
            faults.push_back(watched.fault);
    return faults;
}

std::size_t CallMonitor::Begin(std::string_view call, const std::string& object, const std::string& arguments)
{
    assert(machine::FindPlatformCall(call) != nullptr);
    calls_.push_back({std::string(call), object, arguments, 0});
    return calls_.size() - 1;
}

std::optional<LONG> CallMonitor::FaultOf(const CallRecord& record)
{
    std::optional<LONG> result;
    for (WatchedFault& watched : faults_) {
        const machine::Fault& fault = watched.fault;
        if (fault.call != record.call || (!fault.object.empty() && fault.object != record.object))
            continue;
        ++watched.calls;
        if (result || (fault.occurrence && watched.calls != *fault.occurrence))
            continue;
        watched.fired = true;
        result = fault.result;
    }
    return result;
}

}  // namespace simulation
