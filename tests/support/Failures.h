#pragma once

#include <exception>
#include <string>

// What the exception says that the action throws.
template <class Action>
std::string MessageOf(Action action)
{
    try {
        action();
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return "(nothing thrown)";
}
