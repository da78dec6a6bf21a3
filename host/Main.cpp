// qovxml-configure: runs QovXml::ConfigureQovXmls from the command line.
#include "DefaultMachine.h"
#include "QovXml.h"

#include "machine/MachineJson.h"
#include "machine/Utf16.h"
#include "simulation/SimulatedMachine.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <memory>
#include <string>

namespace {

enum ExitCode : int { Success = 0, RunFailed = 1, WrongUsage = 2 };

class ConsoleLogger final : public ILogger {
public:
    void Log(LogLevel level, const std::wstring& message) override
    {
        std::cerr << (level == LogLevel::Warning ? "[warning] " : "[info] ") << machine::Utf16ToUtf8(message) << '\n';
    }
};

struct Options {
    QovXml::Config config;
    std::string machine;
};

void WarnOfUnmetFaults(const simulation::SimulatedMachine& machine)
{
    for (const machine::Fault& fault : machine.FaultsThatNeverFired())
        std::cerr << "qovxml-configure: warning: no call of this run met the fault of " << fault.call
                  << (fault.object.empty() ? "" : " on " + fault.object)
                  << (fault.occurrence ? ", occurrence " + std::to_string(*fault.occurrence) : "") << '\n';
}

int Run(const Options& options)
{
    ConsoleLogger logger;
    std::unique_ptr<simulation::SimulatedMachine> machine;
    int outcome = Success;
    try {
        if (!options.machine.empty())
            machine = std::make_unique<simulation::SimulatedMachine>(machine::ReadMachine(options.machine));
        else if (auto description = host::DefaultMachine())
            machine = std::make_unique<simulation::SimulatedMachine>(*std::move(description));
        QovXml::ConfigureQovXmls(options.config, logger);
    } catch (const std::exception& failure) {
        std::cerr << "qovxml-configure: failed: " << failure.what() << '\n';
        outcome = RunFailed;
    }
    if (machine)
        WarnOfUnmetFaults(*machine);
    if (outcome == Success)
        std::cout << "qovxml-configure: completed\n";
    return outcome;
}

}  // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("Fits the three QOV configuration files to the audio processing modules of this machine.",
                 "qovxml-configure");
    app.add_option("--configuration", options.config.ConfigurationFile, "QOV configuration file, edited in place")
        ->required();
    app.add_option("--settings", options.config.SettingsFile, "QOV settings file, edited in place")->required();
    app.add_option("--pipelines", options.config.ApoPipelinesDefinitionFile,
                   "APO pipelines definition file, edited in place when an APO is present")
        ->required();
    app.add_option("--machine", options.machine, "run on a simulated machine instead, described by this JSON file")
        ->check(CLI::ExistingFile);
    app.set_version_flag("--version", QOVXML_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        app.exit(error);
        return WrongUsage;
    }
    return Run(options);
}
