#include "support/Trial.h"

#include "simulation/SimulatedMachine.h"
#include "support/Holdings.h"
#include "support/LoggedEdits.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <sstream>

namespace {

constexpr const char* Names[] = {"configuration.xml", "settings.xml", "pipelines.xml"};
constexpr const wchar_t* Saved[] = {L"Saving modified QOV configuration file...",
                                    L"Saving modified QOV settings file...",
                                    L"Saving modified APO pipelines definition file..."};

constexpr const wchar_t* PipelinesMessage = L"Setting up APO pipelines definition file...";

// The bounds of PartsWalk.h, FwDiscovery.cpp and PinModules.h, in calls for each endpoint.
constexpr std::size_t EndpointCalls = 1024 * (20 + 5 + 5 + 3);

struct KeepingLogger final : ILogger {
    explicit KeepingLogger(std::vector<std::wstring>& kept) : log(kept) {}
    void Log(LogLevel, const std::wstring& message) override { log.push_back(message); }

    std::vector<std::wstring>& log;
};

// The fixed parts of the headings of docs/MESSAGES.md, and what a memory shortage says.
std::vector<std::vector<std::string>> ReadDocumentedMessages()
{
    std::vector<std::vector<std::string>> messages = {{"std::bad_alloc", ""}};
    std::istringstream document(ReadBytes(QOVXML_MESSAGES));
    for (std::string line; std::getline(document, line);) {
        if (!line.starts_with("### `") || !line.ends_with('`'))
            continue;
        std::vector<std::string> parts;
        std::string rest = line.substr(5, line.size() - 6);
        for (std::size_t open = 0; (open = rest.find('{')) != std::string::npos; rest.erase(0, rest.find('}') + 1))
            parts.push_back(rest.substr(0, open));
        parts.push_back(rest);
        messages.push_back(parts);
    }
    return messages;
}

bool Fits(const std::string& message, const std::vector<std::string>& parts)
{
    if (!message.starts_with(parts.front()) || !message.ends_with(parts.back()))
        return false;
    std::size_t at = 0;
    for (const std::string& part : parts) {
        at = message.find(part, at);
        if (at == std::string::npos)
            return false;
        at += part.size();
    }
    return parts.size() > 1 || message == parts.front();
}

}  // namespace

bool IsDocumented(const std::string& message)
{
    static const std::vector<std::vector<std::string>> documented = ReadDocumentedMessages();
    return std::any_of(documented.begin(), documented.end(),
                       [&message](const auto& parts) { return Fits(message, parts); });
}

Trials::Trials()
{
    for (std::size_t index = 0; index < paths_.size(); ++index) {
        paths_[index] = folder_.Path(Names[index]);
        before_[index] = ReadBytes(std::filesystem::path(QOVXML_SCENARIOS) / "files" / Names[index]);
        withCrLf_[index] = before_[index];
    }
    Replace(before_[1], "\r", "");  // settings of lines that end with LF alone
}

Trial Trials::Run(const machine::MachineDescription& machine, const Operation& operation) const
{
    Trial trial;
    const auto held = CurrentHoldings();
    for (std::size_t index = 0; index < paths_.size(); ++index)
        WriteBytes(paths_[index], before_[index]);
    {
        const simulation::SimulatedMachine simulated(machine);
        KeepingLogger logger(trial.log);
        try {
            operation({paths_[0], paths_[1], paths_[2]}, logger);
        } catch (const std::exception& failure) {
            trial.failure = failure.what();
            if (!IsDocumented(trial.failure))
                trial.broken += "an undocumented message: " + trial.failure + "\n";
        }
        trial.calls = simulated.Calls();
    }
    for (const auto& [kind, count] : CurrentHoldings())
        if (count != held.at(kind))
            trial.broken += "still held: " + std::to_string(count - held.at(kind)) + " " + kind + "\n";
    if (trial.calls.size() > (machine.endpoints.size() + 1) * EndpointCalls)
        trial.broken += "too many calls: " + std::to_string(trial.calls.size()) + "\n";
    CheckFiles(trial);
    return trial;
}

void Trials::CheckFiles(Trial& trial) const
{
    const auto logged = [&trial](const wchar_t* message) {
        return std::find(trial.log.begin(), trial.log.end(), message) != trial.log.end();
    };
    for (std::size_t index = 0; index < paths_.size(); ++index) {
        trial.files[index] = ReadBytes(paths_[index]);
        const bool saved = logged(Saved[index]);
        if (!saved && trial.failure.empty() && (index < 2 || logged(PipelinesMessage)))
            trial.broken += std::string("not saved: ") + Names[index] + "\n";
        if (!saved && trial.files[index] != before_[index])
            trial.broken += std::string("changed before it is saved: ") + Names[index] + "\n";
        // Memory may run short when the file is about to be written; nothing else may keep it from that.
        const bool mayBeOld = trial.failure == "std::bad_alloc" && saved && trial.log.back() == Saved[index];
        if (saved && !(mayBeOld && trial.files[index] == before_[index]) &&
            trial.files[index] != LoggedEdits(withCrLf_[index], index, trial.log))
            trial.broken += std::string("not as the log says: ") + Names[index] + "\n";
    }
}

unsigned TestShare()
{
    const char* const share = std::getenv("QOVXML_TEST_SHARE");
    return share == nullptr ? 1 : static_cast<unsigned>(std::stoul(share));
}
