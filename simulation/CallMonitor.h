// Records the platform calls of a run and makes chosen ones fail.
#pragma once

#include "MachineDescription.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulation {

struct CallRecord {
    std::string call;       // "Interface::Method", or the name of a Windows function
    std::string object;     // which object of the machine it was made on; empty for a Windows function
    std::string arguments;  // those that matter, as text
    LONG result = 0;        // what the simulated object answered; 0 for a Windows function that was not made to fail
};

class CallMonitor {
public:
    explicit CallMonitor(std::vector<Fault> faults) : faults_(std::move(faults)) {}

    // Notes a Windows function; gives the result with which it must fail, if it must.
    std::optional<LONG> EnterFunction(std::string_view call);

    // Runs a method of a simulated object, or gives the result with which it must fail.
    template <class Body>
    HRESULT Method(std::string_view call, const std::string& object, const std::string& arguments, Body body)
    {
        const std::size_t record = Begin(call, object, arguments);
        const std::optional<LONG> fault = FaultOf(calls_[record]);
        // The body may make calls of its own: the record is found again by its place.
        const HRESULT result = fault ? *fault : body();
        calls_[record].result = result;
        return result;
    }

    [[nodiscard]] const std::vector<CallRecord>& Calls() const { return calls_; }

private:
    std::size_t Begin(std::string_view call, const std::string& object, const std::string& arguments);
    std::optional<LONG> FaultOf(const CallRecord& record) const;

    std::vector<Fault> faults_;
    std::vector<CallRecord> calls_;
};

// Whether a fault can name this call: a typing error must not read as "never fails".
bool IsKnownCall(std::string_view call);
// Whether it is a Windows function, not a method of a simulated object.
bool IsWindowsFunction(std::string_view call);
// Whether `result` is a failure of that call: a Windows error code for functions of the registry and the version, a
// failed HRESULT for all others.
bool IsFailureOf(std::string_view call, LONG result);

}  // namespace simulation
