#include "rehearsal/Rehearsal.h"

#include "common/Text.h"
#include "rehearsal/TemporaryFolder.h"
#include "simulation/SimulatedMachine.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace rehearsal {

namespace {

// By narrow path, as the library opens it.
std::optional<std::string> ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open())
        return std::nullopt;
    constexpr std::size_t FirstPart = 0x10000;
    std::string bytes(FirstPart, '\0');
    std::size_t size = 0;
    while (file.read(bytes.data() + size, static_cast<std::streamsize>(bytes.size() - size))) {
        size = bytes.size();
        // One more than it should hold, to meet its end. A pipe tells no size.
        std::error_code unknown;
        const std::uintmax_t whole = std::filesystem::file_size(path, unknown);
        bytes.resize(std::max(2 * size, unknown ? 0 : static_cast<std::size_t>(whole) + 1));
    }
    size += static_cast<std::size_t>(file.gcount());
    bytes.resize(size);
    return file.bad() ? std::nullopt : std::optional(std::move(bytes));
}

bool WriteFile(const std::string& path, std::string_view bytes)
{
    // For more at once the system takes memory in large pieces, which it seldom has at hand.
    constexpr std::size_t Most = 0x40000;
    std::ofstream file(path, std::ios::binary);
    for (; !bytes.empty(); bytes.remove_prefix(std::min(Most, bytes.size())))
        file << bytes.substr(0, Most);
    return bool(file << std::flush);
}

template <class Text>
void Replace(Text& text, const Text& from, const Text& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != Text::npos; at += to.size())
        text.replace(at, from.size(), to);
}

using Contents = std::array<NamedContents, 3>;

Contents ReadFiles(const QovXml::Config& files)
{
    Contents contents;
    const std::string* const paths[] = {&files.ConfigurationFile, &files.SettingsFile,
                                        &files.ApoPipelinesDefinitionFile};
    for (std::size_t index = 0; index < contents.size(); ++index)
        contents[index] = {*paths[index], ReadFile(*paths[index])};
    return contents;
}

// The copies of the three files, and the names that they stand for.
class Copies {
public:
    explicit Copies(const Contents& originals)
        : pairs_{{{originals[0].path, CopyPath("configuration.xml")},
                  {originals[1].path, CopyPath("settings.xml")},
                  {originals[2].path, CopyPath("pipelines.xml")}}}
    {
    }

    // Copies every file that there is.
    std::array<FileOutcome, 3> Make(Contents originals) const
    {
        std::array<FileOutcome, 3> files;
        for (std::size_t index = 0; index < pairs_.size(); ++index) {
            const auto& [original, copy] = pairs_[index];
            files[index] = {original, std::move(originals[index].bytes), {}};
            if (!files[index].before)
                continue;
            if (!WriteFile(copy, *files[index].before))
                throw NoCopies("The copy " + copy + " of " + original + " cannot be written");
        }
        return files;
    }

    // Each copy goes once it is read, so that its room in memory is the next one's.
    void TakeBack(std::array<FileOutcome, 3>& files) const
    {
        for (std::size_t index = 0; index < pairs_.size(); ++index) {
            std::error_code ignored;
            files[index].after = ReadFile(pairs_[index].second);
            std::filesystem::remove(pairs_[index].second, ignored);
        }
    }

    [[nodiscard]] QovXml::Config Paths() const { return {pairs_[0].second, pairs_[1].second, pairs_[2].second}; }

    [[nodiscard]] std::string WithOriginals(std::string message) const
    {
        for (const auto& [original, copy] : pairs_)
            Replace(message, copy, original);
        return message;
    }
    [[nodiscard]] std::wstring WithOriginals(std::wstring message) const
    {
        for (const auto& [original, copy] : pairs_)
            Replace(message, qov::Widen(copy), qov::Widen(original));
        return message;
    }

private:
    [[nodiscard]] std::string CopyPath(const char* name) const { return (folder_.Path() / name).string(); }

    TemporaryFolder folder_;
    std::array<std::pair<std::string, std::string>, 3> pairs_;  // original and copy
};

// Keeps the messages, and between them the platform calls that came before each.
class EventLogger final : public ILogger {
public:
    EventLogger(const Copies& copies, const simulation::SimulatedMachine* machine) : copies_(copies), machine_(machine)
    {
    }

    void Log(LogLevel level, const std::wstring& message) override
    {
        TakeCalls();
        events_.emplace_back(LogMessage{level, copies_.WithOriginals(message)});
    }

    std::vector<Event> TakeEvents()
    {
        TakeCalls();
        return std::move(events_);
    }

private:
    void TakeCalls()
    {
        if (machine_ == nullptr)
            return;
        const std::vector<simulation::CallRecord>& calls = machine_->Calls();
        events_.insert(events_.end(), calls.begin() + static_cast<std::ptrdiff_t>(taken_), calls.end());
        taken_ = calls.size();
    }

    const Copies& copies_;
    const simulation::SimulatedMachine* const machine_;
    std::size_t taken_ = 0;
    std::vector<Event> events_;
};

Outcome Run(Contents files, const simulation::SimulatedMachine* machine)
{
    const Copies copies(files);
    Outcome outcome;
    outcome.files = copies.Make(std::move(files));
    EventLogger logger(copies, machine);
    try {
        QovXml::ConfigureQovXmls(copies.Paths(), logger);
    } catch (const std::exception& failure) {
        outcome.failure = copies.WithOriginals(std::string(failure.what()));
    }
    outcome.events = logger.TakeEvents();
    copies.TakeBack(outcome.files);
    return outcome;
}

}  // namespace

Outcome Rehearse(const machine::MachineDescription& machine, const QovXml::Config& files)
{
    return RehearseContents(machine, ReadFiles(files));
}

Outcome RehearseContents(const machine::MachineDescription& machine, std::array<NamedContents, 3> files)
{
    const simulation::SimulatedMachine simulated(machine);
    Outcome outcome = Run(std::move(files), &simulated);
    outcome.unusedFaults = simulated.FaultsThatNeverFired();
    return outcome;
}

Outcome Rehearse(const QovXml::Config& files) { return Run(ReadFiles(files), nullptr); }

std::vector<LogMessage> Log(const Outcome& outcome)
{
    std::vector<LogMessage> messages;
    for (const Event& event : outcome.events)
        if (const auto* const message = std::get_if<LogMessage>(&event))
            messages.push_back(*message);
    return messages;
}

}  // namespace rehearsal
