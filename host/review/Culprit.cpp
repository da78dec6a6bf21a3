#include "host/review/Culprit.h"

#include "common/Text.h"
#include "host/review/Calls.h"
#include "host/review/DiscoveryReport.h"
#include "host/review/ShownText.h"
#include "machine/RegistryValueJson.h"
#include "machine/Utf16.h"

#include <objbase.h>

#include <algorithm>
#include <iterator>

namespace host {

namespace {

using simulation::CallRecord;

// The values that a run reads of an endpoint.
struct ReadValue {
    bool effect;  // of FxProperties, else of Properties
    std::string_view name;
    std::string_view words;
};
constexpr std::string_view WrappedList = "wrapped APO list";
constexpr ReadValue ReadValues[] = {
    {false, "{233164c8-1b2c-4c7d-bc68-b671687a2567},1", "device path"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},1", "LFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},2", "GFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},5", "SFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},6", "MFX effect"},
    {true, "{d04e05a6-594b-4fb6-a80d-01af5eed7d1d},7", "EFX effect"},
    {true, "{bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5", WrappedList},
};

std::string TitleOf(const machine::Endpoint& endpoint)
{
    const std::string name = machine::Utf16ToUtf8(endpoint.friendlyName);
    return Harmless(name.empty() ? machine::Utf16ToUtf8(endpoint.deviceId) : name);
}

std::string ValueTitle(const ReadValue& read)
{
    return std::string(read.effect ? "FxProperties" : "Properties") + " value " + std::string(read.name) + " (" +
           std::string(read.words) + ")";
}

// Calls `take` with every value of an active endpoint that a run reads.
template <class Take>
void ForEachReadValue(const machine::MachineDescription& machine, Take take)
{
    for (const machine::Endpoint& endpoint : machine.endpoints)
        for (const ReadValue& read : ReadValues) {
            const auto& values = read.effect ? endpoint.fxProperties : endpoint.properties;
            if (endpoint.state != DEVICE_STATE_ACTIVE || !endpoint.registered || !values)
                continue;
            for (const machine::RegistryValue& value : *values)
                if (LowerCase(machine::Utf16ToUtf8(value.name)) == read.name)
                    take(endpoint, read, value);
        }
}

bool IsGuid(const std::wstring& text)
{
    GUID guid{};
    return SUCCEEDED(CLSIDFromString(text.c_str(), &guid));
}

bool EndsWithCode(const std::string& message, const CallRecord& call)
{
    const std::string code = qov::HexText(static_cast<std::uint32_t>(call.result));
    return message.ends_with("0x" + code) || message.ends_with(": " + code);
}

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
        if (outcome_.failure && !findings_.fileUnderEdit)
            FindFailure(*outcome_.failure);
        for (const EndpointView& view : ReadEndpoints(machine_, outcome_, findings_))
            if (view.walk && view.walk->toBlame)
                AddCall(EndpointTitle(view) + ": " + view.why);
        return {std::move(found_), calls_ ? "trace --failed" : findings_.modulesTold ? "list" : "trace"};
    }

private:
    void AddCall(std::string line)
    {
        found_.push_back(std::move(line));
        calls_ = true;
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

    // The endpoint whose device, part or registry key the call was made on, or else the one that was spoken of last.
    [[nodiscard]] std::string TitleFor(const std::string& object) const
    {
        for (const machine::Endpoint& endpoint : machine_.endpoints) {
            const std::string device = machine::Utf16ToUtf8(endpoint.deviceId);
            const std::string guid = machine::Utf16ToUtf8(machine::LowerGuidText(endpoint.guid));
            if (object == device || object.starts_with(device + "/") ||
                LowerCase(object).find("\\" + guid) != std::string::npos)
                return TitleOf(endpoint) + ": ";
        }
        return lastEndpoint_ == nullptr || object.empty() ? "" : TitleOf(*lastEndpoint_) + ": ";
    }

    void FindFailure(const std::string& message)
    {
        if (message == "Unsupported registry value type")
            FindTypes();
        else if (message == "Unsupported IAP module type" && lastEndpoint_ != nullptr)
            found_.push_back(TitleOf(*lastEndpoint_) + ": pin " + Harmless(lastPin_) + " reports such a module");
        else if (findings_.modulesTold)
            FindModules();
        else if (!FindValue() && !FindKey(message))
            FindCall(message);
    }

    void FindTypes()
    {
        ForEachReadValue(machine_, [this](const auto& endpoint, const ReadValue& read, const auto& value) {
            if (value.type != REG_SZ && value.type != REG_DWORD && value.type != REG_BINARY)
                found_.push_back(TitleOf(endpoint) + ": " + ValueTitle(read) + " has the type " +
                                 machine::RegistryTypeName(value.type));
        });
    }

    // The text at which the run stopped is the one that it told last.
    bool FindValue()
    {
        const std::size_t before = found_.size();
        constexpr std::string_view Told = "] Registry key value name: ";
        const std::size_t told = lastMessage_.find(Told);
        if (lastMessage_.starts_with("GUID #") && lastEndpoint_ != nullptr &&
            !IsGuid(lastEndpoint_->guidPropertyText)) {
            found_.push_back(TitleOf(*lastEndpoint_) + ": its property says \"" +
                             Harmless(machine::Utf16ToUtf8(lastEndpoint_->guidPropertyText)) +
                             "\" where its GUID belongs");
        } else if (told != std::string::npos) {
            const std::string said = lastMessage_.substr(told + Told.size());
            ForEachReadValue(machine_, [&](const auto& endpoint, const ReadValue& read, const auto& value) {
                const std::string text = TextOf(value);
                if (read.words == WrappedList && said == std::string(read.name) + "\nValue get: " + text)
                    found_.push_back(TitleOf(endpoint) + ": " + ValueTitle(read) + " holds \"" + Harmless(text) + "\"");
            });
        }
        return found_.size() > before;
    }

    static std::string TextOf(const machine::RegistryValue& value)
    {
        std::wstring text;
        for (std::size_t index = 0; index + 1 < value.data.size(); index += 2)
            text += static_cast<wchar_t>(value.data[index] | (value.data[index + 1] << 8));
        return machine::Utf16ToUtf8(text.substr(0, text.empty() ? 0 : text.size() - 1));
    }

    bool FindKey(const std::string& message)
    {
        const std::size_t before = found_.size();
        if (!message.starts_with("Call to CLSIDFromString() API failed"))
            return false;
        for (const auto* const keys : {&machine_.furtherCaptureKeys, &machine_.furtherRenderKeys})
            for (const std::wstring& key : *keys)
                if (!IsGuid(key))
                    found_.push_back("the registry key \"" + Harmless(machine::Utf16ToUtf8(key)) + "\" among the " +
                                     (keys == &machine_.furtherRenderKeys ? "render" : "capture") +
                                     " endpoints is named by no GUID");
        return found_.size() > before;
    }

    void FindCall(const std::string& message)
    {
        const auto call = std::find_if(outcome_.events.rbegin(), outcome_.events.rend(), [&](const auto& event) {
            const auto* const record = std::get_if<CallRecord>(&event);
            return record != nullptr && AnswerOf(*record) != Answer::Given && EndsWithCode(message, *record);
        });
        if (call == outcome_.events.rend())
            return;
        const auto& record = std::get<CallRecord>(*call);
        AddCall(TitleFor(record.object) + FailureOf(record));
    }

    // The set of the maker's modules was refused.
    void FindModules()
    {
        for (const FoundModule& module : findings_.modules)
            if (!module.makersName.empty())
                found_.push_back(
                    Harmless(module.friendlyName.empty() ? module.endpointName : module.friendlyName) + ": " +
                    Harmless(module.makersName) + ", " +
                    Harmless(module.pin.empty() ? module.type + " effect" : "firmware, pin " + module.pin) +
                    (module.level == "Wrapped" ? ", wrapped" : ""));
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
