// The registry values that a run reads of the endpoints of a described machine.
#pragma once

#include "machine/MachineDescription.h"

#include <functional>
#include <string>
#include <string_view>

namespace host {

struct ReadValue {
    bool effect;  // of FxProperties, else of Properties
    std::string_view name;
    std::string_view words;

    // "FxProperties value {d04e05a6-594b-4fb6-a80d-01af5eed7d1d},5 (SFX effect)".
    [[nodiscard]] std::string Title() const;
    [[nodiscard]] bool IsWrappedList() const;
};

// Calls `take` with every value of an active endpoint that a run reads.
void ForEachReadValue(
    const machine::MachineDescription& machine,
    const std::function<void(const machine::Endpoint&, const ReadValue&, const machine::RegistryValue&)>& take);

// UTF-8, without its last unit, as the run tells it; not harmless.
std::string TextOf(const machine::RegistryValue& value);

// Whether it holds a text, but none that a run takes for a GUID.
bool HoldsOtherThanGuid(const machine::RegistryValue& value);

// "Speakers", or the device id of an endpoint without a name; harmless to show.
std::string TitleOf(const machine::Endpoint& endpoint);

bool IsGuid(const std::wstring& text);

}  // namespace host
