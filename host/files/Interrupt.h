// Ctrl+C, SIGTERM and their like: noted when they come, looked at between steps.
#pragma once

#include <string>

namespace host {

// Thrown where an interruption is looked at; no std::exception, so that nothing takes it for a failure.
struct Interrupted {
    int signal = 0;       // SIGINT and its like; on Windows the CTRL_..._EVENT
    std::string message;  // what could not be put back, one line each; mostly empty
};

// From its making to its end interruptions are noted instead of ending the process, and a write to a closed pipe or
// beyond the limit of a file's size fails instead of ending it. One at a time.
class InterruptGuard {
public:
    InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    ~InterruptGuard();
};

// Throws Interrupted if one has come.
void ThrowIfInterrupted();

// Ends the process as the interruption would have done. Everything else must be given back before.
[[noreturn]] void EndAs(const Interrupted& interruption);

}  // namespace host
