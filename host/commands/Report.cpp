#include "host/Now.h"
#include "host/ThisMachine.h"
#include "host/commands/Commands.h"
#include "host/commands/Look.h"
#include "host/report/Page.h"

namespace host {

ExitCode RunReport(const ReportOptions& options)
{
    if (const ExitCode code = RefusedOutput(options, options.output, "<!DOCTYPE html>"); code != Done)
        return code;
    return RunLook(options, [&options](const Look& look, const Console& console) {
        const PageFacts facts{"qovxml-configure " QOVXML_VERSION, SystemName(), look.machineName, Now(),
                              NamesFiles(options)};
        return WriteResult(options.output, ReportPage(facts, look.machine, look.outcome, look.findings, look.endpoints),
                           console);
    });
}

}  // namespace host
