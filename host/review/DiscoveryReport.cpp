#include "host/review/DiscoveryReport.h"

#include "host/review/ShownText.h"

#include <algorithm>
#include <string_view>

namespace host {

namespace {

constexpr std::wstring_view ReportStart =
    L"\n=======================================\nDiscovered audio modules: \n=======================================\n";

struct MakersModule {
    std::string_view guid;
    const char* name;
};
constexpr MakersModule MakersModules[] = {
    {"{e69e0626-bcb3-441c-a43c-663464298842}", "ZAN APO LFX"},
    {"{272b1e6e-1e98-4476-b3f0-1a4654be1089}", "ZAN APO SFX"},
    {"{7ba4ceb1-0a15-4ae4-b090-461d48fb641c}", "ZAN APO MFX"},
    {"{8c2789a2-b0f3-49d5-8b47-af13a3f46cfd}", "ZAN APO EFX"},
    {"{7c708106-3aff-40fe-88be-8c999b3f7445}", "SPATIALF"},
};

// A value ends where the next label begins, since it may hold line feeds itself.
struct Field {
    std::string FoundModule::*value;
    std::string_view label;
};
constexpr Field Fields[] = {
    {&FoundModule::guid, "* Module GUID: "},
    {&FoundModule::deviceId, "\n* DeviceId: "},
    {&FoundModule::endpointName, "\n* EndpointName: "},
    {&FoundModule::endpointGuid, "\n* Audio Endpoint GUID: "},
    {&FoundModule::location, "\n* Location: "},
    {&FoundModule::level, "\n* Level: "},
    {&FoundModule::type, "\n* Type: "},
    {&FoundModule::flow, "\n* Flow: "},
};

bool Skip(std::string_view& text, std::string_view start)
{
    if (!text.starts_with(start))
        return false;
    text.remove_prefix(start.size());
    return true;
}

// Takes one module off the text; false when there is none.
bool TakeModule(std::string_view& text, std::size_t number, FoundModule& module)
{
    if (!Skip(text, "Module #" + std::to_string(number) + ": \n"))
        return false;
    for (std::size_t index = 0; index < std::size(Fields); ++index) {
        if (!Skip(text, Fields[index].label))
            return false;
        const bool last = index + 1 == std::size(Fields);
        const std::size_t end = text.find(last ? std::string_view("\n") : Fields[index + 1].label);
        if (end == std::string_view::npos)
            return false;
        module.*Fields[index].value = text.substr(0, end);
        text.remove_prefix(end);
    }
    text.remove_prefix(1);
    if (Skip(text, "* Property pin ID: ")) {
        module.pin = text.substr(0, text.find_first_not_of("0123456789"));
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    }
    return true;
}

}  // namespace

bool IsDiscoveryReport(const std::wstring& message) { return message.starts_with(ReportStart); }

std::vector<FoundModule> ReadDiscoveryReport(const std::wstring& message)
{
    const std::string report = LogText(message);
    std::string_view rest = std::string_view(report).substr(ReportStart.size());
    std::vector<FoundModule> modules;
    for (FoundModule module; TakeModule(rest, modules.size(), module); module = {}) {
        for (const MakersModule& known : MakersModules)
            if (module.guid == known.guid)
                module.makersName = known.name;
        modules.push_back(std::move(module));
    }
    return modules;
}

std::string LowerCase(std::string text)
{
    for (char& byte : text)
        if (byte >= 'A' && byte <= 'Z')
            byte = static_cast<char>(byte - 'A' + 'a');
    return text;
}

}  // namespace host
