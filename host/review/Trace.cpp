#include "host/review/Trace.h"

#include "common/Text.h"
#include "host/review/Calls.h"
#include "host/review/ShownText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace host {

namespace {

using simulation::CallRecord;
using Json = nlohmann::ordered_json;

// Lines that begin a step, which the lines behind them are told within.
struct StepStart {
    std::wstring_view start;
    unsigned depth;
};
constexpr StepStart StepStarts[] = {
    {L"QovXml: ConfigureQovXmls() ", 0},
    {L"AudioModulesUtils: DiscoverAudioModules() ", 0},
    {L"AudioModulesUtils: Discover", 1},
    {L"Devices count:", 2},
    {L"****** NEXT DEVICE ******", 2},
    {L"Current device id:", 3},
    {L"*** NEXT CONNECTOR ***", 4},
    {L"Starting to look for a connector that supports PP API...", 4},
    {L"Using pin id:", 5},
    {L"Calling GetAudioEndpoints() ", 2},
    {L"Endpoint #", 3},
    {L"GUID #", 3},
    {L"\n=======", 0},
    {L"Found Orvex SPATIALF FW modules count: ", 0},
    {L"Reading QOV configuration from: ", 0},
    {L"Reading QOV settings from: ", 0},
    {L"Setting up APO pipelines definition file...", 0},
};

const StepStart* FindStart(const std::wstring& text)
{
    const auto* const found = std::find_if(std::begin(StepStarts), std::end(StepStarts),
                                           [&text](const StepStart& row) { return text.starts_with(row.start); });
    return found == std::end(StepStarts) ? nullptr : found;
}

constexpr std::size_t IndentWidth = 2;

// Several lines of a message stand below each other.
void AppendIndented(std::vector<TraceLine>& lines, const std::string& text, unsigned depth)
{
    const std::string indent(depth * IndentWidth, ' ');
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (end > 0)
            lines.push_back({indent + std::string(rest.substr(0, end)), false});
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

std::string CallLine(const CallRecord& call)
{
    const std::string arguments = ArgumentsText(call);
    const Answer answer = AnswerOf(call);
    const std::string result = answer == Answer::Given && call.result == 0 ? "" : " " + ResultText(call);
    return call.call + (call.object.empty() ? "" : " of " + Harmless(call.object)) +
           (arguments.empty() ? "" : " (" + arguments + ")") +
           (answer == Answer::Failed   ? " FAILED:"
            : answer == Answer::Absent ? " -> absent:"
                                       : " -> ok") +
           result;
}

}  // namespace

std::vector<TraceStep> ReadTrace(const rehearsal::Outcome& outcome)
{
    std::vector<TraceStep> steps;
    unsigned within = 0;
    for (const rehearsal::Event& event : outcome.events) {
        if (const auto* const call = std::get_if<CallRecord>(&event)) {
            if (steps.empty())
                steps.emplace_back();
            steps.back().calls.push_back(*call);
            continue;
        }
        const auto& message = std::get<rehearsal::LogMessage>(event);
        const StepStart* const start = FindStart(message.text);
        const unsigned depth = start == nullptr ? within : start->depth;
        if (start != nullptr)
            within = depth + 1;
        steps.push_back({depth, message, {}});
    }
    return steps;
}

std::vector<TraceStep> FailedSteps(const std::vector<TraceStep>& steps)
{
    std::vector<TraceStep> failed;
    const TraceStep* untold = steps.data();
    std::vector<const TraceStep*> around;  // the steps that the current one is told within, from the outermost
    for (const TraceStep& step : steps) {
        while (!around.empty() && around.back()->depth >= step.depth)
            around.pop_back();
        TraceStep left{step.depth, step.line, {}};
        std::copy_if(step.calls.begin(), step.calls.end(), std::back_inserter(left.calls),
                     [](const CallRecord& call) { return AnswerOf(call) == Answer::Failed; });
        around.push_back(&step);
        if (left.calls.empty())
            continue;
        // Those that were told already are not told again.
        for (const TraceStep* const outer : around)
            if (outer != &step && outer >= untold)
                failed.push_back({outer->depth, outer->line, {}});
        untold = &step + 1;
        failed.push_back(std::move(left));
    }
    return failed;
}

std::vector<TraceLine> TraceLines(const std::vector<TraceStep>& steps)
{
    std::vector<TraceLine> lines;
    for (const TraceStep& step : steps) {
        const char* const mark = step.line.level == LogLevel::Warning ? "warning: " : "";
        AppendIndented(lines, mark + HarmlessLines(LogText(step.line.text)), step.depth);
        const std::string indent(IndentWidth * (step.depth + 1), ' ');
        for (const CallRecord& call : step.calls) {
            const bool failed = AnswerOf(call) == Answer::Failed;
            lines.push_back({(failed ? "!" + indent.substr(1) : indent) + CallLine(call), failed});
        }
    }
    return lines;
}

nlohmann::ordered_json TraceJson(const std::vector<TraceStep>& steps)
{
    Json list = Json::array();
    for (const TraceStep& step : steps) {
        Json calls = Json::array();
        for (const CallRecord& call : step.calls)
            calls.push_back({{"call", call.call},
                             {"object", Utf8(call.object)},
                             {"arguments", Utf8(call.arguments)},
                             {"result", qov::HexText(static_cast<std::uint32_t>(call.result))},
                             {"failed", AnswerOf(call) == Answer::Failed}});
        list.push_back({{"depth", step.depth},
                        {"level", step.line.level == LogLevel::Warning ? "warning" : "info"},
                        {"text", LogText(step.line.text)},
                        {"calls", std::move(calls)}});
    }
    return list;
}

}  // namespace host
