// What to do about what a run throws.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace host {

struct Advice {
    std::string_view message;  // what a message begins with
    std::string_view whatToDo;
};

// One row for each message that the library can throw.
std::span<const Advice> AllAdvice();

// One or two sentences; for a message that is in no row, a general one.
std::string_view WhatToDo(std::string_view message);

}  // namespace host
