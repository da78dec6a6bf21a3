// qovxml-configure: QovXml::ConfigureQovXmls for people, on real files.
#include "host/CommandLine.h"
#include "host/Terminal.h"
#include "host/commands/Commands.h"
#include "host/files/Interrupt.h"

#include <exception>
#include <iostream>

namespace {

host::ExitCode Run(const host::ApplyOptions& options) { return host::RunApply(options); }
host::ExitCode Run(const host::RestoreOptions& options) { return host::RunRestore(options); }
host::ExitCode Run(const host::TraceOptions& options) { return host::RunTrace(options); }
host::ExitCode Run(const host::ListOptions& options) { return host::RunList(options); }
host::ExitCode Run(const host::ReportOptions& options) { return host::RunReport(options); }
host::ExitCode Run(const host::SnapshotOptions& options) { return host::RunSnapshot(options); }
host::ExitCode Run(host::ExitCode answered) { return answered; }

}  // namespace

int main(int argc, char** argv)
{
    host::SetUpStreams();
    host::Interrupted interruption;
    try {
        const auto command = host::ReadCommandLine(argc, argv);
        return std::visit([](const auto& chosen) { return Run(chosen); }, command);
    } catch (const host::Interrupted& interrupted) {
        std::cerr << interrupted.message << (interrupted.message.empty() ? "" : "\n");
        interruption = interrupted;
    } catch (const std::exception& failure) {
        std::cerr << "error: " << failure.what() << '\n';
        return host::RunFailed;
    }
    host::EndAs(interruption);
}
