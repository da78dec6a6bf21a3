#include "host/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <string_view>

namespace host {

namespace {

constexpr char DefaultBackupSuffix[] = ".bak";
constexpr char BadSuffix[] = "--backup: the suffix must not be empty or hold a path separator";

void AddCommonOptions(CLI::App& command, CommonOptions& options)
{
    const auto file = [&command](const char* name, std::string& path, const char* help) {
        command.add_option(name, path, help)->required()->type_name("FILE");
    };
    file("--configuration", options.files.ConfigurationFile, "QOV configuration file");
    file("--settings", options.files.SettingsFile, "QOV settings file");
    file("--pipelines", options.files.ApoPipelinesDefinitionFile,
         "APO pipelines definition file, wanted when an APO is present");
    auto* const machine =
        command
            .add_option("--machine", options.machineFile,
                        "simulate the machine that this JSON file describes instead of using this one")
            ->type_name("FILE");
    command.add_flag("--example-machine", options.exampleMachine, "simulate the built-in example laptop")
        ->excludes(machine);
    auto* const quiet = command.add_flag("--quiet", options.quiet, "tell warnings and the outcome only");
    command.add_flag("--verbose", options.verbose, "tell the whole log of the library")->excludes(quiet);
    auto* const logFile =
        command.add_option("--log-file", options.logFile, "write the whole log to this file")->type_name("FILE");
    // An empty name, as of a variable that is not set, must not read as none.
    for (CLI::Option* const option : {machine, logFile})
        option->check([](const std::string& path) { return path.empty() ? "the file has no name" : ""; });
    command.add_flag("--json", options.json, "print one JSON object on standard output and nothing else there");
    command.add_flag("--no-color", options.noColor, "no colours (NO_COLOR in the environment does the same)");
}

// "--backup", or "--backup=SUFFIX".
void AddBackupOption(CLI::App& command, std::string& suffix, const std::string& help)
{
    command.add_flag("--backup{" + std::string(DefaultBackupSuffix) + "}", suffix, help)->type_name("[=SUFFIX]");
}

bool IsSuffix(const std::string& suffix) { return !suffix.empty() && suffix.find_first_of("/\\") == std::string::npos; }

constexpr char Footer[] =
    R"(Exit codes: 0 done or nothing to change, 1 the run was refused or failed, 2 wrong usage, 3 a file problem,
4 a dry run would change something (--exit-code), 5 warnings (--strict).)";
constexpr char ApplyExample[] = R"(Example: see what would change, then change it and keep copies:
  qovxml-configure apply --configuration QovConfiguration.xml --settings QovSettings.xml \
    --pipelines ApoPipelinesDefinition.xml --dry-run --diff
  qovxml-configure apply --configuration QovConfiguration.xml --settings QovSettings.xml \
    --pipelines ApoPipelinesDefinition.xml --backup)";
constexpr char RestoreExample[] = R"(Example: put back what `apply --backup` kept:
  qovxml-configure restore --configuration QovConfiguration.xml --settings QovSettings.xml \
    --pipelines ApoPipelinesDefinition.xml)";

}  // namespace

std::variant<ApplyOptions, RestoreOptions, ExitCode> ReadCommandLine(int argc, char** argv)
{
    ApplyOptions applyOptions;
    RestoreOptions restoreOptions;
    CLI::App app("Fits the three QOV configuration files to the audio processing modules of this machine.",
                 "qovxml-configure");
    app.set_version_flag("--version", "qovxml-configure " QOVXML_VERSION);
    app.require_subcommand(1);
    app.footer(std::string(ApplyExample) + "\n\n" + RestoreExample + "\n\n" + Footer);

    CLI::App& apply = *app.add_subcommand("apply", "Fit the three files to the machine, safely.");
    AddCommonOptions(apply, applyOptions);
    apply.add_flag("--dry-run", applyOptions.dryRun, "change nothing; tell what would change");
    apply.add_flag("--diff", applyOptions.diff, "print a unified diff, for patch -p0 --binary");
    apply.add_flag("--exit-code", applyOptions.exitCode, "with --dry-run: exit with 4 if something would change");
    apply.add_flag("--strict", applyOptions.strict, "stop with 5 at any warning, with nothing changed");
    std::string backupSuffix;
    AddBackupOption(apply, backupSuffix, "keep a copy of each file that changes, beside it (.bak)");
    apply.footer(std::string(ApplyExample) + "\n\n" + Footer);

    CLI::App& restore = *app.add_subcommand("restore", "Put back the copies that `apply --backup` kept.");
    AddCommonOptions(restore, restoreOptions);
    restoreOptions.backupSuffix = DefaultBackupSuffix;
    AddBackupOption(restore, restoreOptions.backupSuffix, "the suffix of the copies (.bak)");
    restore.footer(std::string(RestoreExample) + "\n\n" + Footer);

    for (CLI::App* const command : {&apply, &restore})
        command->set_version_flag("--version", "qovxml-configure " QOVXML_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) != 0 ? WrongUsage : std::cout.flush() ? Done : RunFailed;
    }
    // An empty value of a flag would read as none.
    if (std::find(argv, argv + argc, std::string_view("--backup=")) != argv + argc)
        return TellWrongUsage(BadSuffix);
    if (*apply.get_option("--backup"))
        applyOptions.backupSuffix = backupSuffix;
    if ((applyOptions.backupSuffix && !IsSuffix(*applyOptions.backupSuffix)) || !IsSuffix(restoreOptions.backupSuffix))
        return TellWrongUsage(BadSuffix);
    if (applyOptions.exitCode && !applyOptions.dryRun)
        return TellWrongUsage("--exit-code goes with --dry-run");
    if (apply.parsed())
        return applyOptions;
    return restoreOptions;
}

ExitCode TellWrongUsage(const std::string& reason)
{
    std::cerr << reason << "\nRun with --help for more information.\n";
    return WrongUsage;
}

}  // namespace host
