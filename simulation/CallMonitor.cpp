#include "simulation/CallMonitor.h"

namespace simulation {

std::vector<machine::Fault> CallMonitor::FaultsThatNeverFired() const
{
    std::vector<machine::Fault> faults;
    for (const WatchedFault& watched : faults_)
        if (!watched.fired)
            faults.push_back(watched.fault);
    return faults;
}

std::optional<LONG> CallMonitor::FaultOf(const CallRecord& record)
{
    std::optional<LONG> result;
    for (WatchedFault& watched : faults_) {
        const machine::Fault& fault = watched.fault;
        if (fault.call != record.call || (!fault.object.empty() && fault.object != record.object) ||
            (!fault.arguments.empty() && fault.arguments != record.arguments))
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
