#pragma once

#include "ILogger.h"

#include <string>
#include <utility>
#include <vector>

class RecordingLogger final : public ILogger {
public:
    void Log(LogLevel level, const std::wstring& message) override { messages.emplace_back(level, message); }

    [[nodiscard]] std::vector<std::wstring> Texts() const
    {
        std::vector<std::wstring> texts;
        for (const auto& [level, message] : messages)
            texts.push_back(message);
        return texts;
    }

    std::vector<std::pair<LogLevel, std::wstring>> messages;
};
