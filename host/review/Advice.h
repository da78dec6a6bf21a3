// What to do about what a run throws.
#pragma once

#include <span>
#include <string_view>

namespace host {

struct Advice {
    std::string_view message;  // "*" stands for what varies; result codes follow at the end
    std::string_view whatToDo;
};

// One row for each message that the library can throw.
std::span<const Advice> AllAdvice();

// For a message that fits no row, a general one.
std::string_view WhatToDo(std::string_view message);

}  // namespace host
