// Records the platform calls of a run and makes chosen ones fail.
#pragma once

#include "machine/MachineDescription.h"
#include "machine/PlatformCalls.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace simulation {

struct CallRecord {
    std::string call;       // one of machine::PlatformCalls()
    std::string object;     // which object of the machine it was made on, or the path of a registry key
    std::string arguments;  // those that matter, as text
    LONG result = 0;        // what it gave; for VerifyVersionInfoW the last error, 0 with TRUE
};

class CallMonitor {
public:
    explicit CallMonitor(std::vector<machine::Fault> faults);

    CallMonitor(const CallMonitor&) = delete;
    CallMonitor& operator=(const CallMonitor&) = delete;

    // Runs a Windows function or a method of a simulated object, or gives the failure that it must give. A fault whose
    // result is a success code takes the place of the body's own success.
    template <class Body>
    LONG Watch(std::string_view call, const std::string& object, const std::string& arguments, Body body)
    {
        const machine::PlatformCall& kind = *machine::FindPlatformCall(call);
        const std::size_t record = calls_.size();
        calls_.push_back({std::string(call), object, arguments, 0});
        const std::optional<LONG> fault = FaultOf(calls_[record]);
        LONG result = fault.value_or(0);
        if (!kind.IsFailure(result))
            if (const LONG own = body(); kind.IsFailure(own) || !fault)
                result = own;
        // The body may make calls of its own: the record is found again by its number.
        calls_[record].result = result;
        return result;
    }

    [[nodiscard]] const std::vector<CallRecord>& Calls() const { return calls_; }

    // Those that no call has met so far.
    [[nodiscard]] std::vector<machine::Fault> FaultsThatNeverFired() const;

private:
    // What faults speak of the same calls, by their numbers; of several that fit, the first fires.
    struct WatchedCalls {
        unsigned calls = 0;  // so far
        std::optional<std::size_t> every;
        std::map<unsigned, std::size_t> occurrences;
    };
    using Kind = std::tuple<std::string_view, std::string_view, std::string_view>;  // call, object, arguments

    std::optional<LONG> FaultOf(const CallRecord& record);

    std::vector<machine::Fault> faults_;
    std::vector<bool> fired_;
    std::map<Kind, WatchedCalls> watched_;  // an empty object or empty arguments: any
    std::vector<CallRecord> calls_;
};

}  // namespace simulation
