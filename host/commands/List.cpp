#include "host/commands/Commands.h"
#include "host/commands/Look.h"
#include "host/review/ShownText.h"

#include <nlohmann/json.hpp>

#include <iostream>

namespace host {

ExitCode RunList(const ListOptions& options)
{
    return RunLook(options, [&options](const Look& look, const Console& console) {
        // What comes after the report of the modules adds nothing to the list.
        const bool whole = look.findings.modulesTold;
        if (options.json)
            console.Json(nlohmann::ordered_json{
                {"machine", Utf8(look.machineName)},
                {"failure", look.outcome.failure ? nlohmann::ordered_json(Utf8(*look.outcome.failure)) : nullptr},
                {"endpoints", EndpointsJson(look.endpoints)}}
                             .dump(2));
        else
            std::cout << EndpointTable(look.endpoints);
        if (!whole)
            console.Error("The list is not whole, the run ended with: " + Harmless(look.outcome.failure.value_or("")));
        return Printed(console, whole ? Done : RunFailed);
    });
}

}  // namespace host
