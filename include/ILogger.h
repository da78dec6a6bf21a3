#pragma once

#include <cstdint>
#include <string>

enum class LogLevel : std::uint8_t { Info = 0, Warning = 1 };

// The host's logger. The library calls Log alone, on the thread that called the library; further virtual operations
// may follow it in an implementation.
class ILogger {
public:
    // One complete message in UTF-16, which may hold several lines. `message` lives for the duration of the call only.
    virtual void Log(LogLevel level, const std::wstring& message) = 0;

protected:
    ILogger() = default;
    ILogger(const ILogger&) = default;
    ILogger& operator=(const ILogger&) = default;
    ~ILogger() = default;
};
