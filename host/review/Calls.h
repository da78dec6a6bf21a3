// One platform call of a run, as people are told of it. Texts are UTF-8 and harmless to show.
#pragma once

#include "simulation/CallMonitor.h"

#include <string>
#include <string_view>

namespace host {

enum class Answer {
    Given,
    Absent,  // there is no such value, key, selector or path: what the run asks for to learn whether there is one
    Failed,
};
Answer AnswerOf(const simulation::CallRecord& call);

// Hexadecimal without leading zeros, as messages tell it, and what it means if that is known: "80070005, access
// denied".
std::string ResultText(const simulation::CallRecord& call);

// A request to the driver and numbers in words, anything else as it was recorded.
std::string ArgumentsText(const simulation::CallRecord& call);

// Names of devices, parts and keys without what all of them begin with: "...\espeakerwave/00010003".
std::string ShortName(std::string_view object);

// "IPart::EnumPartsIncoming of ...\espeakerwave/00010003 failed with 80070005, access denied".
std::string FailureOf(const simulation::CallRecord& call);

}  // namespace host
