#include "simulation/CallMonitor.h"

#include <algorithm>
#include <utility>

namespace simulation {

CallMonitor::CallMonitor(std::vector<machine::Fault> faults) : faults_(std::move(faults)), fired_(faults_.size())
{
    for (std::size_t index = 0; index < faults_.size(); ++index) {
        const machine::Fault& fault = faults_[index];
        WatchedCalls& watched = watched_[{fault.call, fault.object, fault.arguments}];
        if (fault.occurrence)
            watched.occurrences.try_emplace(*fault.occurrence, index);
        else if (!watched.every)
            watched.every = index;
    }
}

std::vector<machine::Fault> CallMonitor::FaultsThatNeverFired() const
{
    std::vector<machine::Fault> faults;
    for (std::size_t index = 0; index < faults_.size(); ++index)
        if (!fired_[index])
            faults.push_back(faults_[index]);
    return faults;
}

// A call is looked up by what faults can say of it, so that many faults cost it no more than one.
std::optional<LONG> CallMonitor::FaultOf(const CallRecord& record)
{
    std::size_t first = faults_.size();
    for (const bool anyObject : {true, false}) {
        for (const bool anyArguments : {true, false}) {
            // Empty is any.
            if ((!anyObject && record.object.empty()) || (!anyArguments && record.arguments.empty()))
                continue;
            const auto found = watched_.find({record.call, anyObject ? "" : std::string_view(record.object),
                                              anyArguments ? "" : std::string_view(record.arguments)});
            if (found == watched_.end())
                continue;
            WatchedCalls& watched = found->second;
            if (const auto fault = watched.occurrences.find(++watched.calls); fault != watched.occurrences.end())
                first = std::min(first, fault->second);
            first = std::min(first, watched.every.value_or(first));
        }
    }
    if (first == faults_.size())
        return std::nullopt;
    fired_[first] = true;
    return faults_[first].result;
}

}  // namespace simulation
