#include "host/commands/Look.h"

#include "BuiltIn.h"
#include "host/commands/Ending.h"
#include "host/files/Interrupt.h"
#include "host/review/Calls.h"
#include "host/review/ShownText.h"
#include "rehearsal/TemporaryFolder.h"
#include "simulation/UnusableMachine.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

namespace host {

namespace {

std::array<rehearsal::NamedContents, 3> ExampleFiles()
{
    std::array<rehearsal::NamedContents, 3> files;
    for (std::size_t index = 0; index < files.size(); ++index) {
        std::string bytes;
        for (const char* byte = BuiltInFiles[index].text; *byte != '\0'; ++byte)
            bytes += *byte == '\n' ? std::string("\r\n") : std::string(1, *byte);
        files[index] = {BuiltInFiles[index].name, std::move(bytes)};
    }
    return files;
}

Look LookAt(const ChosenMachine& machine, const CommonOptions& options)
{
    Look look{machine.name, machine.description.value(), {}, {}, {}};
    look.outcome = NamesFiles(options) ? rehearsal::Rehearse(look.machine, options.files)
                                       : rehearsal::RehearseContents(look.machine, ExampleFiles());
    ThrowIfInterrupted();
    look.findings = ReadFindings(look.outcome);
    look.endpoints = ReadEndpoints(look.machine, look.outcome, look.findings);
    return look;
}

}  // namespace

ExitCode TellUnusable(const ChosenMachine& machine, const simulation::UnusableMachine& unusable, const Console& console)
{
    if (!machine.isSnapshot)
        return TellWrongUsage(Harmless(machine.name) + ": " + Harmless(unusable.what()));
    console.Error(UnusableSnapshot(unusable));
    for (const std::string& line : FailedFunctions(*machine.description))
        console.Error("At fault: " + line);
    return RunFailed;
}

std::string UnusableSnapshot(const simulation::UnusableMachine& unusable)
{
    return "The snapshot of this machine cannot be run on here: " + Harmless(unusable.what()) +
           ". What to do: Write it with qovxml-configure snapshot, and look at it with --machine off Windows.";
}

std::vector<std::string> FailedFunctions(const machine::MachineDescription& machine)
{
    std::vector<std::string> lines;
    for (const machine::Fault& fault : machine.faults)
        if (machine::FindPlatformCall(fault.call)->IsFunction())
            lines.push_back(FailureOf({fault.call, fault.object, fault.arguments, fault.result}));
    return lines;
}

bool NamesFiles(const CommonOptions& options) { return !options.files.ConfigurationFile.empty(); }

ExitCode RunLook(const CommonOptions& options, const std::function<ExitCode(const Look&, const Console&)>& body)
{
    return RunCommand(options, "", MachineNeed::Description,
                      [&](const ChosenMachine& machine, const Console& console, LogFile&) {
                          try {
                              return body(LookAt(machine, options), console);
                          } catch (const simulation::UnusableMachine& unusable) {
                              return TellUnusable(machine, unusable, console);
                          } catch (const std::exception& failure) {
                              console.Error(Harmless(failure.what()));
                              return RunFailed;
                          }
                      });
}

ExitCode RefusedOutput(const CommonOptions& options, const std::string& path, std::string_view beginning)
{
    if (path.empty())
        return Done;
    const std::string_view use = UseOf(path, options, "");
    if (!use.empty())
        return TellWrongUsage("--output: " + Harmless(path) + " " + std::string(use));
    std::error_code unknown;
    if (std::filesystem::is_regular_file(path, unknown)) {
        std::string start(beginning.size(), '\0');
        std::ifstream file(path, std::ios::binary);
        file.read(start.data(), static_cast<std::streamsize>(start.size()));
        if (file.gcount() > 0 && start != beginning)
            return TellWrongUsage("--output: " + Harmless(path) +
                                  " is there already and is no such result: name another file");
    }
    return Done;
}

ExitCode WriteResult(const std::string& path, const std::string& text, const Console& console)
{
    if (path.empty()) {
        std::cout << text;
        return Printed(console, Done);
    }
    std::ofstream file(path, std::ios::binary);
    if (file << text << std::flush)
        return Done;
    console.Error(Harmless(path) + ": cannot be written: name a file in a folder that you may write to");
    return FileProblemFound;
}

ExitCode Printed(const Console& console, ExitCode code)
{
    if (console.OutputWritten())
        return code;
    console.Error("Standard output could not be written to its end");
    return code == Done ? RunFailed : code;
}

}  // namespace host
