#include "host/review/Calls.h"

#include "common/Text.h"
#include "host/review/ShownText.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

struct Result {
    std::uint32_t code;
    std::string_view meaning;
};
constexpr Result Results[] = {
    {0x80004001, "not implemented"},
    {0x80004002, "no such interface"},
    {0x80004005, "unspecified failure"},
    {0x80010106, "other COM apartment"},
    {0x80040154, "class not registered"},
    {0x800401f3, "no GUID"},
    {0x80070002, "file not found"},
    {0x80070005, "access denied"},
    {0x8007000e, "out of memory"},
    {0x80070057, "invalid argument"},
    {0x80070490, "not found"},
    {0x80070492, "property set not found"},
    {0x800706ba, "service unavailable"},
    {0x88890004, "device invalidated"},
    {0x88890010, "audio service not running"},
    {0x2, "not found"},
    {0x5, "access denied"},
    {0x6, "invalid handle"},
    {0xea, "more data"},
    {0x3fa, "key deleted"},
    {0x47e, "older Windows"},
};

// Answers by which the run learns that there is nothing, and goes on.
struct AbsentAnswer {
    std::string_view call;
    std::uint32_t code;
};
constexpr AbsentAnswer AbsentAnswers[] = {
    {"IPart::Activate", 0x80004002},
    {"IDeviceTopology::GetSignalPath", 0x80070490},
    {"IKsControl::KsProperty", 0x80070490},
    {"IKsControl::KsProperty", 0x80070492},
    {"IConnector::GetConnectedTo", 0x80070490},
    {"IConnector::GetConnectorIdConnectedTo", 0x80070490},
    {"IConnector::GetDeviceIdConnectedTo", 0x80070490},
    {"RegOpenKeyExW", 0x2},
    {"RegQueryValueExW", 0x2},
    {"VerifyVersionInfoW", 0x47e},
};

std::uint32_t CodeOf(const simulation::CallRecord& call) { return static_cast<std::uint32_t>(call.result); }

// The driver is asked by bytes: property set, id, flags, and the pin or node.
struct Request {
    std::string_view set;
    std::string_view id;
    std::string_view words;
};
constexpr Request Requests[] = {
    {"37cee9ba99aac74b9bdf4cbf3d23e1b9", "00000000", "PP API version of pin "},
    {"37cee9ba99aac74b9bdf4cbf3d23e1b9", "01000000", "PP API module list of pin "},
    {"dc822f3a6f88aa4b9eb4082b9025c536", "06000000", "audio engine descriptor of node "},
};
constexpr std::size_t SetDigits = 32, IdDigits = 8, TargetStart = 48, TargetDigits = 8;

// Arguments that are numbers.
struct Numbers {
    std::string_view call;
    std::string_view arguments;
    std::string_view words;
};
constexpr Numbers NumbersInWords[] = {
    {"IMMDeviceEnumerator::EnumAudioEndpoints", "0, 1", "active render endpoints"},
    {"IMMDeviceEnumerator::EnumAudioEndpoints", "1, 1", "active capture endpoints"},
    {"IMMDeviceEnumerator::EnumAudioEndpoints", "2, 1", "active endpoints"},
    {"IPropertyStore::GetValue", "4", "the endpoint's GUID"},
    {"IPropertyStore::GetValue", "14", "its friendly name"},
};

// Eight hexadecimal digits, the low byte first; others give nothing that is wrong to show.
std::uint32_t LittleEndian(std::string_view digits)
{
    std::uint32_t value = 0;
    for (std::size_t byte = digits.size() / 2; byte-- > 0;)
        value =
            (value << 8) | static_cast<std::uint32_t>(std::stoul(std::string(digits.substr(2 * byte, 2)), nullptr, 16));
    return value;
}

}  // namespace

Answer AnswerOf(const simulation::CallRecord& call)
{
    const machine::PlatformCall* const known = machine::FindPlatformCall(call.call);
    if (known == nullptr || !known->IsFailure(call.result))
        return Answer::Given;
    const bool absent =
        std::any_of(std::begin(AbsentAnswers), std::end(AbsentAnswers),
                    [&call](const AbsentAnswer& row) { return row.call == call.call && row.code == CodeOf(call); });
    return absent ? Answer::Absent : Answer::Failed;
}

std::string ResultText(const simulation::CallRecord& call)
{
    std::string text = qov::HexText(CodeOf(call));
    for (const Result& row : Results)
        if (row.code == CodeOf(call))
            text += ", " + std::string(row.meaning);
    return text;
}

std::string ArgumentsText(const simulation::CallRecord& call)
{
    const std::string_view arguments = call.arguments;
    const bool digits = call.call == "IKsControl::KsProperty" && arguments.size() > TargetStart + TargetDigits &&
                        arguments.find_first_not_of("0123456789abcdef") >= TargetStart + TargetDigits;
    for (const Request& row : Requests)
        if (digits && arguments.starts_with(row.set) && arguments.substr(SetDigits, IdDigits) == row.id)
            return std::string(row.words) + std::to_string(LittleEndian(arguments.substr(TargetStart, TargetDigits))) +
                   (arguments.ends_with("no data 0") ? ", its size" : "");
    for (const Numbers& row : NumbersInWords)
        if (row.call == call.call && row.arguments == arguments)
            return std::string(row.words);
    return Harmless(call.arguments);
}

std::string ShortName(std::string_view object)
{
    // Below the key of the endpoints, or below the driver's device.
    constexpr std::string_view Endpoints = "MMDevices\\Audio\\";
    const std::size_t key = object.find(Endpoints);
    const std::size_t last = key == std::string_view::npos ? object.rfind('\\') : key + Endpoints.size() - 1;
    return last == std::string_view::npos ? Harmless(object) : "..." + Harmless(object.substr(last));
}

std::string FailureOf(const simulation::CallRecord& call)
{
    const std::string arguments = ArgumentsText(call);
    return call.call + (call.object.empty() ? "" : " of " + ShortName(call.object)) +
           (arguments.empty() ? "" : " (" + arguments + ")") + " failed with " + ResultText(call);
}

}  // namespace host
