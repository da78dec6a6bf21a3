#pragma once

#include <stdexcept>

namespace simulation {

// A well-formed description of a machine that cannot be played on this system.
struct UnusableMachine : std::runtime_error {
    using runtime_error::runtime_error;
};

}  // namespace simulation
