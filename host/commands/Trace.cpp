#include "host/review/Trace.h"
#include "host/commands/Commands.h"
#include "host/commands/Look.h"
#include "host/review/ShownText.h"

#include <nlohmann/json.hpp>

namespace host {

ExitCode RunTrace(const TraceOptions& options)
{
    return RunLook(options, [&options](const Look& look, const Console& console) {
        std::vector<TraceStep> steps = ReadTrace(look.outcome);
        if (options.failedOnly)
            steps = FailedSteps(steps);
        if (options.json)
            console.Json(nlohmann::ordered_json{
                {"machine", Utf8(look.machineName)},
                {"failure", look.outcome.failure ? nlohmann::ordered_json(Utf8(*look.outcome.failure)) : nullptr},
                {"steps", TraceJson(steps)}}
                             .dump(2));
        else
            for (const TraceLine& line : TraceLines(steps))
                console.Line(line.text, line.failed);
        if (!options.json && steps.empty())
            console.Line("No call failed.", false);
        if (look.outcome.failure && !options.json)
            console.Line("The run ended with: " + Harmless(*look.outcome.failure), true);
        return Printed(console, Done);
    });
}

}  // namespace host
