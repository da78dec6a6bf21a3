#include "host/review/Culprit.h"

#include "common/Text.h"
#include "host/review/Calls.h"
#include "host/review/DiscoveryReport.h"
#include "host/review/ReadValues.h"
#include "host/review/ShownText.h"
#include "machine/RegistryValueJson.h"
#include "machine/Utf16.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace host {

namespace {

using simulation::CallRecord;

// Messages without a code, and the call that fails with them.
struct CodelessFailure {
    std::string_view message;
    std::string_view call;
};
constexpr CodelessFailure CodelessFailures[] = {
    {"Failed to initialize COM interface", "CoInitializeEx"},
    {"Unable to open registry key", "RegOpenKeyW"},
    {"Unable to close registry key", "RegCloseKey"},
    {"StringFromCLSID() call failed", "StringFromCLSID"},
};

// Calls without which the run goes on, though with less than there may be.
constexpr std::string_view PassedOverCalls[] = {"RegEnumKeyExW", "RegQueryInfoKeyW", "CLSIDFromString",
                                                "VerifyVersionInfoW"};

constexpr std::size_t MaxLines = 10;

bool TellsOf(const std::string& message, const CallRecord& call)
{
    const std::string code = qov::HexText(static_cast<std::uint32_t>(call.result));
    return message.ends_with("0x" + code) || message.ends_with(": " + code) ||
           std::any_of(std::begin(CodelessFailures), std::end(CodelessFailures),
                       [&](const CodelessFailure& row) { return row.message == message && row.call == call.call; });
}

bool IsGuidCall(const CallRecord& call) { return call.call == "CLSIDFromString" || call.call == "StringFromCLSID"; }

class Search {
public:
    Search(const machine::MachineDescription& machine, const rehearsal::Outcome& outcome, const Findings& findings)
        : machine_(machine), outcome_(outcome), findings_(findings)
    {
        for (const rehearsal::Event& event : outcome.events)
            if (const auto* const message = std::get_if<rehearsal::LogMessage>(&event))
                TakeMessage(message->text);
    }

    Culprits Find()
    {
        // Not by one of the files.
        const bool failed = outcome_.failure && !findings_.fileUnderEdit;
        if (failed)
            FindFailure(*outcome_.failure);
        FindWalks();
        if (!failed) {
            FindPassedOverCalls();
            FindPassedOverEffects();
        }
        if (found_.size() > MaxLines) {
            const std::size_t more = found_.size() - MaxLines;
            found_.resize(MaxLines);
            found_.push_back("and " + std::to_string(more) + " more");
        }
        return {std::move(found_), calls_ ? "trace --failed" : failed && findings_.modulesTold ? "list" : "trace"};
    }

private:
    void Add(std::string line)
    {
        if (std::find(found_.begin(), found_.end(), line) == found_.end())
            found_.push_back(std::move(line));
    }

    void AddCall(std::string line)
    {
        Add(std::move(line));
        calls_ = true;
    }

    void FindWalks()
    {
        for (const EndpointView& view : ReadEndpoints(machine_, outcome_, findings_)) {
            if (!view.walk || view.why.empty())
                continue;
            if (view.walk->toBlame)
                AddCall(EndpointTitle(view) + ": " + view.why);
            else if (view.walk->damaged)
                Add(EndpointTitle(view) + ": " + view.why);
        }
    }

    // The first of the failed calls on each object.
    void FindPassedOverCalls()
    {
        std::set<std::string> told;
        for (const rehearsal::Event& event : outcome_.events) {
            const auto* const call = std::get_if<CallRecord>(&event);
            if (call == nullptr || AnswerOf(*call) != Answer::Failed ||
                std::find(std::begin(PassedOverCalls), std::end(PassedOverCalls), call->call) ==
                    std::end(PassedOverCalls) ||
                !told.insert(call->call + (IsGuidCall(*call) ? call->arguments : call->object)).second)
                continue;
            if (!IsGuidCall(*call) || (IsGuid(machine::Utf8ToUtf16(call->arguments)) && !FindGuidValues(*call)))
                AddCall(FailureOf(*call));
        }
    }

    // Their texts tell it on every system: Windows' own functions leave no record.
    void FindPassedOverEffects()
    {
        ForEachReadValue(machine_, [&](const auto& endpoint, const ReadValue& read, const auto& value) {
            if (read.effect && !read.IsWrappedList() && HoldsOtherThanGuid(value))
                Add(TitleOf(endpoint) + ": " + read.Title() + " holds \"" + Harmless(TextOf(value)) +
                    "\" where a GUID belongs");
        });
    }

    // A GUID that was refused nevertheless.
    bool FindGuidValues(const CallRecord& call)
    {
        bool any = false;
        ForEachReadValue(machine_, [&](const auto& endpoint, const ReadValue& read, const auto& value) {
            if (TextOf(value) != call.arguments)
                return;
            AddCall(TitleOf(endpoint) + ": " + read.Title() + ": " + FailureOf(call));
            any = true;
        });
        return any;
    }

    // What was spoken of last.
    void TakeMessage(const std::wstring& message)
    {
        lastMessage_ = LogText(message);
        constexpr std::string_view Device = "Current device id:";
        if (lastMessage_.starts_with(Device))
            SetEndpoint([id = lastMessage_.substr(Device.size())](const std::string& device) { return device == id; });
        else if (lastMessage_.starts_with("Endpoint #"))
            SetEndpoint([this](const std::string& device) { return lastMessage_.ends_with("(" + device + ")"); });
        else if (lastMessage_.starts_with("Using pin id:"))
            lastPin_ = lastMessage_.substr(13, lastMessage_.find('\n') - 13);
    }

    template <class Matches>
    void SetEndpoint(Matches matches)
    {
        for (const machine::Endpoint& endpoint : machine_.endpoints)
            if (matches(machine::Utf16ToUtf8(endpoint.deviceId)))
                lastEndpoint_ = &endpoint;
    }

    // The endpoint whose device, part, registry key or GUID the call was made with, or else the one that was spoken of
    // last. The keys above those of the endpoints belong to none.
    [[nodiscard]] std::string TitleFor(const CallRecord& call) const
    {
        for (const machine::Endpoint& endpoint : machine_.endpoints) {
            const std::string device = machine::Utf16ToUtf8(endpoint.deviceId);
            const std::string guid = machine::Utf16ToUtf8(machine::LowerGuidText(endpoint.guid));
            if (call.object == device || call.object.starts_with(device + "/") ||
                LowerCase(call.object).find("\\" + guid) != std::string::npos ||
                (IsGuidCall(call) && LowerCase(call.arguments) == guid))
                return TitleOf(endpoint) + ": ";
        }
        const bool other = call.call.starts_with("Reg") || (call.object.empty() && !IsGuidCall(call));
        return lastEndpoint_ == nullptr || other ? "" : TitleOf(*lastEndpoint_) + ": ";
    }

    void FindFailure(const std::string& message)
    {
        if (message == "Unsupported registry value type")
            FindTypes();
        else if (message == "Unsupported IAP module type" && lastEndpoint_ != nullptr)
            Add(TitleOf(*lastEndpoint_) + ": pin " + Harmless(lastPin_) + " reports such a module");
        else if (findings_.modulesTold)
            FindModules(message);
        else if (!FindGuidProperty(message) && !FindValue() && !FindKey(message))
            FindCall(message);
    }

    void FindTypes()
    {
        ForEachReadValue(machine_, [this](const auto& endpoint, const ReadValue& read, const auto& value) {
            if (value.type != REG_SZ && value.type != REG_DWORD && value.type != REG_BINARY)
                Add(TitleOf(endpoint) + ": " + read.Title() + " has the type " + machine::RegistryTypeName(value.type));
        });
    }

    bool FindGuidProperty(const std::string& message)
    {
        if (!message.starts_with("Failed to convert device GUID!") || lastEndpoint_ == nullptr ||
            IsGuid(lastEndpoint_->guidPropertyText))
            return false;
        Add(TitleOf(*lastEndpoint_) + ": its property says \"" +
            Harmless(machine::Utf16ToUtf8(lastEndpoint_->guidPropertyText)) + "\" where its GUID belongs");
        return true;
    }

    // The text at which the run stopped is the one that it told last.
    bool FindValue()
    {
        const std::size_t before = found_.size();
        constexpr std::string_view Told = "] Registry key value name: ";
        const std::size_t told = lastMessage_.find(Told);
        if (told == std::string::npos)
            return false;
        const std::string said = lastMessage_.substr(told + Told.size());
        ForEachReadValue(machine_, [&](const auto& endpoint, const ReadValue& read, const auto& value) {
            const std::string text = TextOf(value);
            if (read.IsWrappedList() && said == std::string(read.name) + "\nValue get: " + text)
                Add(TitleOf(endpoint) + ": " + read.Title() + " holds \"" + Harmless(text) + "\"");
        });
        return found_.size() > before;
    }

    bool FindKey(const std::string& message)
    {
        const std::size_t before = found_.size();
        if (!message.starts_with("Call to CLSIDFromString() API failed"))
            return false;
        for (const auto* const keys : {&machine_.furtherCaptureKeys, &machine_.furtherRenderKeys})
            for (const std::wstring& key : *keys)
                if (!IsGuid(key))
                    Add("the registry key \"" + Harmless(machine::Utf16ToUtf8(key)) + "\" among the " +
                        (keys == &machine_.furtherRenderKeys ? "render" : "capture") +
                        " endpoints is named by no GUID");
        return found_.size() > before;
    }

    void FindCall(const std::string& message)
    {
        const auto call = std::find_if(outcome_.events.rbegin(), outcome_.events.rend(), [&](const auto& event) {
            const auto* const record = std::get_if<CallRecord>(&event);
            return record != nullptr && AnswerOf(*record) != Answer::Given && TellsOf(message, *record);
        });
        if (call == outcome_.events.rend())
            return;
        const auto& record = std::get<CallRecord>(*call);
        AddCall(TitleFor(record) + FailureOf(record));
    }

    // The set of the maker's modules was refused: those that the message counts.
    void FindModules(const std::string& message)
    {
        const bool anywhere = message.ends_with("different endpoints");
        const std::string_view location = message.find("SPATIALF") != std::string::npos ? "FW" : "APO";
        const std::size_t mode = message.find(" in ") == std::string::npos ? 0 : message.find(" mode: ");
        for (const FoundModule& module : findings_.modules) {
            const std::string& name = module.makersName;
            if (name.empty() || (!anywhere && module.location != location) ||
                IsPassedOver(module, findings_.generation))
                continue;
            // "... in LFX/MFX mode: 2"
            if (mode != 0 && mode != std::string::npos &&
                message.substr(0, mode).find(name.substr(name.size() - 3)) == std::string::npos)
                continue;
            Add(Harmless(module.friendlyName.empty() ? module.endpointName : module.friendlyName) + ": " +
                Harmless(name) + ", " +
                Harmless(module.pin.empty() ? module.type + " effect"
                                            : "firmware, pin " + module.pin + " " + module.type) +
                (module.level == "Wrapped" ? ", wrapped" : ""));
        }
    }

    const machine::MachineDescription& machine_;
    const rehearsal::Outcome& outcome_;
    const Findings& findings_;
    std::string lastMessage_, lastPin_;
    const machine::Endpoint* lastEndpoint_ = nullptr;
    std::vector<std::string> found_;
    bool calls_ = false;
};

}  // namespace

std::string EndpointTitle(const EndpointView& endpoint)
{
    return Harmless(endpoint.name.empty() ? endpoint.deviceId : endpoint.name);
}

Culprits FindCulprits(const machine::MachineDescription& machine, const rehearsal::Outcome& outcome,
                      const Findings& findings)
{
    return Search(machine, outcome, findings).Find();
}

}  // namespace host
