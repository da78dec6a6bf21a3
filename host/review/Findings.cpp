#include "host/review/Findings.h"

#include "host/review/DiscoveryReport.h"
#include "host/review/ShownText.h"

#include <map>
#include <string_view>

namespace host {

namespace {

struct FileMessage {
    std::wstring_view start;
    File file;
};
constexpr FileMessage ReadMessages[] = {{L"Reading QOV configuration from: ", ConfigurationFile},
                                        {L"Reading QOV settings from: ", SettingsFile},
                                        {L"Reading APO pipelines definition from: ", PipelinesFile}};

// The values that a message announces.
struct ValueMessage {
    File file;
    std::wstring_view start;
    const char* name;
    const char* keyword;
    const char* tag;
};
constexpr ValueMessage ValueMessages[] = {
    {ConfigurationFile, L"DeviceId: ", "DeviceId", "", "DeviceId:"},
    {ConfigurationFile, L"EndpointName: ", "EndpointName", "", "EndpointName:"},
    {PipelinesFile, L"APO GUID: ", "ModuleGuid", "", "ModuleGuid:"},
};
constexpr std::wstring_view DefaultModeStart = L"DEFAULT Mode ParamId: ";
constexpr std::wstring_view SpeechModeStart = L"\r\nSPEECH Mode ParamId: ";

// The run switches the blocks of each file in this order, and says so with these labels.
struct BlockMessage {
    const char* name;
    std::wstring_view label;
};
constexpr BlockMessage BlockMessages[] = {
    {BlockNames[0], L"LFX/MFX"}, {BlockNames[1], L"SFX"}, {BlockNames[2], L"EFX"}, {BlockNames[3], L"MFX"}};

constexpr std::wstring_view CountsStart = L"Found Orvex SPATIALF FW modules count: ";
constexpr std::wstring_view DeviceCountStart = L"Devices count:";

// The number that the text begins with, as far as it fits.
std::size_t LeadingNumber(std::wstring_view text)
{
    std::size_t number = 0;
    for (const wchar_t unit : text) {
        if (unit < L'0' || unit > L'9' || number > 1'000'000'000)
            break;
        number = 10 * number + static_cast<std::size_t>(unit - L'0');
    }
    return number;
}

// The sum of the numbers that end its lines.
std::size_t SumOfCounts(std::wstring_view message)
{
    std::size_t sum = 0;
    for (std::size_t colon = 0; (colon = message.find(L": ", colon)) != std::wstring_view::npos; colon += 2)
        sum += LeadingNumber(message.substr(colon + 2));
    return sum;
}

// Takes the messages in order.
class Reader {
public:
    explicit Reader(const rehearsal::Outcome& outcome) : outcome_(outcome) {}

    void Take(const std::wstring& message)
    {
        TakeEndpoint(message);
        TakeFile(message);
        TakeValues(message);
        TakeBlock(message);
        if (message.starts_with(DeviceCountStart))
            findings_.deviceCount = LeadingNumber(std::wstring_view(message).substr(DeviceCountStart.size()));
        else if (message.starts_with(CountsStart))
            findings_.makersModules = SumOfCounts(message);
        else if (message == L"Detected Windows 8.1 or greater")
            findings_.generation = WindowsGeneration::Windows8Point1OrGreater;
        else if (message == L"Detected Windows 8.0 or lower")
            findings_.generation = WindowsGeneration::Windows8Point0OrLower;
        else if (message == L"Setting up APO pipelines definition file...")
            findings_.pipelinesWanted = true;
        else if (IsDiscoveryReport(message)) {
            findings_.modulesTold = true;
            findings_.modules = ReadDiscoveryReport(message);
        }
    }

    Findings Finish()
    {
        for (FoundModule& module : findings_.modules)
            if (const auto name = friendlyNames_.find(module.endpointGuid); name != friendlyNames_.end())
                module.friendlyName = name->second;
        return std::move(findings_);
    }

private:
    // One message names an endpoint, the next tells its GUID.
    void TakeEndpoint(const std::wstring& message)
    {
        const std::string text = LogText(message);
        if (text.starts_with("GUID #") && lastFriendlyName_) {
            friendlyNames_[LowerCase(text.substr(std::min(text.size(), text.find(": ") + 2)))] = *lastFriendlyName_;
            lastFriendlyName_.reset();
        } else if (text.starts_with("Endpoint #")) {
            const std::size_t start = text.find('"') + 1;
            lastFriendlyName_ = text.substr(start, text.rfind('(') - start);
        }
    }

    void TakeFile(const std::wstring& message)
    {
        for (const FileMessage& row : ReadMessages) {
            if (!message.starts_with(row.start))
                continue;
            findings_.fileUnderEdit = row.file;
            findings_.filesRead[row.file] = true;
            blocks_ = 0;
        }
    }

    void TakeValues(std::wstring_view message)
    {
        for (const ValueMessage& row : ValueMessages)
            if (findings_.fileUnderEdit == row.file && message.starts_with(row.start))
                findings_.values.push_back(
                    {row.file, row.name, row.keyword, row.tag, NarrowUnits(message.substr(row.start.size()))});
        const std::size_t speech = message.find(SpeechModeStart);
        if (!message.starts_with(DefaultModeStart) || speech == std::wstring_view::npos)
            return;
        findings_.values.push_back(
            {PipelinesFile, "ParamId (DEFAULT mode)", "Subeffects_DefaultMode",
             "ParamId:", NarrowUnits(message.substr(DefaultModeStart.size(), speech - DefaultModeStart.size()))});
        findings_.values.push_back({PipelinesFile, "ParamId (SPEECH mode)", "Subeffects_SpeechMode",
                                    "ParamId:", NarrowUnits(message.substr(speech + SpeechModeStart.size()))});
    }

    void TakeBlock(std::wstring_view message)
    {
        if (!findings_.fileUnderEdit || blocks_ == std::size(BlockMessages))
            return;
        const BlockMessage& next = BlockMessages[blocks_];
        const bool on = message.starts_with(L'+');
        if ((!on && !message.starts_with(L'-')) || message.substr(1) != next.label)
            return;
        const File file = *findings_.fileUnderEdit;
        const std::optional<std::string>& bytes = outcome_.files[file].before;
        findings_.blocks.push_back({file, next.name, on, bytes && bytes->find(next.name) != std::string::npos});
        ++blocks_;
    }

    const rehearsal::Outcome& outcome_;
    Findings findings_;
    std::map<std::string, std::string> friendlyNames_;  // by GUID
    std::optional<std::string> lastFriendlyName_;
    std::size_t blocks_ = 0;  // of the file under edit
};

}  // namespace

Findings ReadFindings(const rehearsal::Outcome& outcome)
{
    Reader reader(outcome);
    for (const rehearsal::LogMessage& message : rehearsal::Log(outcome))
        reader.Take(message.text);
    return reader.Finish();
}

bool IsPassedOver(const FoundModule& module, WindowsGeneration generation)
{
    if (module.makersName == "SPATIALF" || generation == WindowsGeneration::Unknown)
        return false;
    return (module.makersName == "ZAN APO LFX") != (generation == WindowsGeneration::Windows8Point0OrLower);
}

}  // namespace host
