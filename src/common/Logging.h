#pragma once

#include "ILogger.h"

namespace qov {

// A line of the progress report, which nearly every message is.
inline void LogInfo(ILogger& logger, const std::wstring& message) { logger.Log(LogLevel::Info, message); }

}  // namespace qov
