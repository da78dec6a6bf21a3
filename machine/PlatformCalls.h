// The platform calls that a run makes, and what their results mean: one table for whoever records them, makes them
// fail or speaks of them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace machine {

// How a call tells that it failed: a method or a COM function by a negative HRESULT, a registry function by any
// result but 0, the version test by the last error.
enum class ResultKind { HResult, WindowsError };

// What a call is recorded with: the object of the machine that it is made on, or on which what it is made on was got.
enum class ObjectKind {
    None,
    Device,         // an endpoint or an adapter device, by its device id
    Endpoint,       // by its device id
    Filter,         // an adapter device that has a filter, by its device id
    Part,           // by its global id
    Connector,      // a part that is a connector
    InputSelector,  // a part that is an input selector
    OutputSelector,
    DeviceOrPart,  // lists of parts: of neighbours by the part, of a signal path by the device
    Key,           // a registry key that a run opens, by its path
};

struct PlatformCall {
    std::string_view name;  // "Interface::Method", or the name of a Windows function
    ObjectKind object = ObjectKind::None;
    ResultKind result = ResultKind::HResult;

    // Whether it is a Windows function, not a method of an object.
    [[nodiscard]] constexpr bool IsFunction() const { return name.find(':') == std::string_view::npos; }
    [[nodiscard]] constexpr bool IsFailure(std::int32_t code) const
    {
        return result == ResultKind::HResult ? code < 0 : code > 0;
    }
    // Whether the call can be made to give `code`: a failure, or a success code other than S_OK.
    [[nodiscard]] constexpr bool CanGive(std::int32_t code) const
    {
        return result == ResultKind::HResult ? code != 0 : code > 0;
    }
};

// Every call that can be recorded and made to fail, the Windows functions first.
std::span<const PlatformCall> PlatformCalls();

// Null for a name that is not in the table.
const PlatformCall* FindPlatformCall(std::string_view name);

}  // namespace machine
