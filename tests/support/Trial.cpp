#include "support/Trial.h"

#include "simulation/SimulatedMachine.h"
#include "support/Holdings.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <sstream>

namespace {

constexpr const char* Names[] = {"configuration.xml", "settings.xml", "pipelines.xml"};
constexpr const wchar_t* Saved[] = {L"Saving modified QOV configuration file...",
                                    L"Saving modified QOV settings file...",
                                    L"Saving modified APO pipelines definition file..."};

// The bounds of PartsWalk.h, FwDiscovery.cpp and PinModules.h, in calls for each endpoint.
constexpr std::size_t EndpointCalls = 1024 * (20 + 5 + 5 + 3);

struct KeepingLogger final : ILogger {
    explicit KeepingLogger(std::vector<std::wstring>& kept) : log(kept) {}
    void Log(LogLevel, const std::wstring& message) override { log.push_back(message); }

    std::vector<std::wstring>& log;
};

void Replace(std::string& text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
}

// What the run put into the files, by what it logged.
constexpr struct {
    const char* logged;
    const char* before;  // in the file
    const char* tag;     // what stays of that
} Values[] = {
    {"DeviceId: ", "DeviceId:func_01&amp;ven_0000", "DeviceId:"},
    {"EndpointName: ", "EndpointName:unset", "EndpointName:"},
    {"APO GUID: ", "ModuleGuid:{00000000-0000-0000-0000-000000000000}", "ModuleGuid:"},
    {"DEFAULT Mode ParamId: ", "DefaultMode\" Param=\"ParamId:unset", "DefaultMode\" Param=\"ParamId:"},
    {"\r\nSPEECH Mode ParamId: ", "SpeechMode\" Param=\"ParamId:unset", "SpeechMode\" Param=\"ParamId:"},
};

// A file with the values that were logged, but without comment markers.
std::string WithValues(std::string bytes, const std::vector<std::wstring>& log)
{
    for (const auto& row : Values)
        for (const std::wstring& message : log) {
            std::string text;
            for (const wchar_t unit : message)
                text += static_cast<char>(unit);
            const std::size_t found = text.find(row.logged);
            if (found == std::string::npos || (found != 0 && !text.starts_with("DEFAULT Mode")))
                continue;
            text.erase(0, found + std::strlen(row.logged));
            if (std::string(row.logged).starts_with("DEFAULT"))
                text.erase(text.find('\r'));
            Replace(text, "\n", "\r\n");
            Replace(bytes, row.before, row.tag + text);
        }
    return bytes;
}

std::string WithoutMarkers(std::string bytes)
{
    Replace(bytes, "<!--", "");
    Replace(bytes, "-->", "");
    return bytes;
}

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
    }
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
    for (std::size_t index = 0; index < paths_.size(); ++index) {
        trial.files[index] = ReadBytes(paths_[index]);
        const bool saved = std::count(trial.log.begin(), trial.log.end(), Saved[index]) == 1;
        if (!saved && trial.failure.empty() && index < 2)
            trial.broken += std::string("not saved: ") + Names[index] + "\n";
        const bool old = trial.files[index] == before_[index];
        if (!old &&
            (!saved || WithoutMarkers(trial.files[index]) != WithoutMarkers(WithValues(before_[index], trial.log))))
            trial.broken += std::string("neither old nor new: ") + Names[index] + "\n";
    }
}

unsigned TestShare()
{
    const char* const share = std::getenv("QOVXML_TEST_SHARE");
    return share == nullptr ? 1 : static_cast<unsigned>(std::stoul(share));
}
