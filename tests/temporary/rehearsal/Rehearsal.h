// Stand-in until the room of this name is there.
#pragma once
#include "CallMonitor.h"
#include "ILogger.h"
#include "MachineDescription.h"
#include "MachineJson.h"
#include "QovXml.h"
#include "SimulatedMachine.h"
#include "Utf16.h"
#include "support/Scratch.h"

#include <array>
#include <filesystem>
#include <variant>

namespace machine {
using simulation::MachineDescription;
using simulation::Utf16ToUtf8;
}
namespace rehearsal {
struct LogMessage {
    LogLevel level;
    std::wstring text;
};
using Event = std::variant<LogMessage, simulation::CallRecord>;
struct FileOutcome {
    std::string path;
    std::optional<std::string> before, after;
};
struct Outcome {
    std::optional<std::string> failure;
    std::vector<Event> events;
    std::array<FileOutcome, 3> files;
};
inline std::optional<std::string> Bytes(const std::string& path)
{
    return std::filesystem::exists(path) ? std::optional(ReadBytes(path)) : std::nullopt;
}
inline Outcome Rehearse(const machine::MachineDescription& machine, const QovXml::Config& files)
{
    struct Logger final : ILogger {
        void Log(LogLevel level, const std::wstring& text) override { events->push_back(LogMessage{level, text}); }
        std::vector<Event>* events;
    };
    Outcome outcome;
    outcome.files = {FileOutcome{files.ConfigurationFile, {}, {}}, FileOutcome{files.SettingsFile, {}, {}},
                     FileOutcome{files.ApoPipelinesDefinitionFile, {}, {}}};
    for (auto& file : outcome.files)
        file.before = Bytes(file.path);
    Logger logger;
    logger.events = &outcome.events;
    {
        const simulation::SimulatedMachine simulated(machine);
        try {
            QovXml::ConfigureQovXmls(files, logger);
        } catch (const std::exception& failure) {
            outcome.failure = failure.what();
        }
        for (const auto& call : simulated.Calls())
            outcome.events.push_back(call);
    }
    for (auto& file : outcome.files)
        file.after = Bytes(file.path);
    return outcome;
}
}  // namespace rehearsal
