#include "host/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <iostream>
#include <string_view>

namespace host {

namespace {

constexpr char DefaultBackupSuffix[] = ".bak";
constexpr char BadSuffix[] = "--backup: the suffix must not be empty or hold a path separator";

// An empty name, as of a variable that is not set, must not read as none.
CLI::Option* AddNamedFile(CLI::App& command, const char* name, std::string& path, const char* help)
{
    return command.add_option(name, path, help)->type_name("FILE")->check([](const std::string& given) {
        return given.empty() ? "the file has no name" : "";
    });
}

std::array<CLI::Option*, 3> AddFiles(CLI::App& command, QovXml::Config& files)
{
    return {AddNamedFile(command, "--configuration", files.ConfigurationFile, "QOV configuration file"),
            AddNamedFile(command, "--settings", files.SettingsFile, "QOV settings file"),
            AddNamedFile(command, "--pipelines", files.ApoPipelinesDefinitionFile,
                         "APO pipelines definition file, wanted when an APO is present")};
}

void AddMachine(CLI::App& command, CommonOptions& options)
{
    auto* const machine = AddNamedFile(command, "--machine", options.machineFile,
                                       "simulate the machine that this JSON file describes instead of using this one");
    command.add_flag("--example-machine", options.exampleMachine, "simulate the built-in example laptop")
        ->excludes(machine);
}

void AddColours(CLI::App& command, CommonOptions& options)
{
    command.add_flag("--no-color", options.noColor, "no colours (NO_COLOR in the environment does the same)");
}

void AddJson(CLI::App& command, CommonOptions& options)
{
    command.add_flag("--json", options.json, "print one JSON object on standard output and nothing else there");
}

// Of the commands that may change files.
void AddCommonOptions(CLI::App& command, CommonOptions& options)
{
    for (CLI::Option* const file : AddFiles(command, options.files))
        file->required();
    AddMachine(command, options);
    auto* const quiet = command.add_flag("--quiet", options.quiet, "tell warnings and the outcome only");
    command.add_flag("--verbose", options.verbose, "tell the whole log of the library")->excludes(quiet);
    AddNamedFile(command, "--log-file", options.logFile, "write the whole log to this file");
    AddJson(command, options);
    AddColours(command, options);
}

// Of the commands that only look: all three files, or none.
void AddLookOptions(CLI::App& command, CommonOptions& options)
{
    const auto files = AddFiles(command, options.files);
    for (CLI::Option* const file : files)
        for (CLI::Option* const other : files)
            if (file != other)
                file->needs(other);
    AddMachine(command, options);
    AddColours(command, options);
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
constexpr char LookFooter[] =
    R"(Works on the machine that --machine describes, or on a snapshot of this one, on the example files where none are
named: no selector is switched, nothing is written to the machine or to the files.)";

struct Commands {
    ApplyOptions apply;
    RestoreOptions restore;
    TraceOptions trace;
    ListOptions list;
    ReportOptions report;
    SnapshotOptions snapshot;
    std::string applySuffix;  // of --backup
};

CLI::App& AddCommand(CLI::App& app, const char* name, const char* help, const std::string& footer)
{
    CLI::App& command = *app.add_subcommand(name, help);
    command.set_version_flag("--version", "qovxml-configure " QOVXML_VERSION);
    command.footer(footer);
    return command;
}

void AddApply(CLI::App& app, Commands& commands)
{
    CLI::App& apply = AddCommand(app, "apply", "Fit the three files to the machine, safely.",
                                 std::string(ApplyExample) + "\n\n" + Footer);
    ApplyOptions& options = commands.apply;
    AddCommonOptions(apply, options);
    apply.add_flag("--dry-run", options.dryRun,
                   "change nothing, switch no selector (the run is made on a snapshot of the machine); tell what would "
                   "change");
    apply.add_flag("--diff", options.diff, "print a unified diff, for patch -p0 --binary");
    apply.add_flag("--exit-code", options.exitCode, "with --dry-run: exit with 4 if something would change");
    apply.add_flag("--strict", options.strict, "stop with 5 at any warning, with nothing changed");
    AddBackupOption(apply, commands.applySuffix, "keep a copy of each file that changes, beside it (.bak)");
}

void AddRestore(CLI::App& app, RestoreOptions& options)
{
    CLI::App& restore = AddCommand(app, "restore", "Put back the copies that `apply --backup` kept.",
                                   std::string(RestoreExample) + "\n\n" + Footer);
    AddCommonOptions(restore, options);
    options.backupSuffix = DefaultBackupSuffix;
    AddBackupOption(restore, options.backupSuffix, "the suffix of the copies (.bak)");
}

void AddLooks(CLI::App& app, Commands& commands)
{
    CLI::App& list = AddCommand(
        app, "list", "List the endpoints with their effects and firmware modules, or why there are none.", LookFooter);
    AddMachine(list, commands.list);
    AddColours(list, commands.list);
    AddJson(list, commands.list);

    CLI::App& trace = AddCommand(app, "trace", "Tell a run of the library call by call.", LookFooter);
    AddLookOptions(trace, commands.trace);
    trace.add_flag("--failed", commands.trace.failedOnly, "tell the calls that failed alone");
    AddJson(trace, commands.trace);

    CLI::App& report = AddCommand(
        app, "report", "Write one page (HTML) that tells a run, with the machine's description inside.", LookFooter);
    AddLookOptions(report, commands.report);
    AddNamedFile(report, "--output", commands.report.output, "the page")->required();

    CLI::App& snapshot = AddCommand(app, "snapshot", "Write the machine as a file that --machine takes, anywhere.",
                                    "Two snapshots of an unchanged machine are the same. No selector is switched.");
    AddMachine(snapshot, commands.snapshot);
    AddColours(snapshot, commands.snapshot);
    AddNamedFile(snapshot, "--output", commands.snapshot.output, "the file (standard output)");
    snapshot.add_flag("--redact", commands.snapshot.redact, "\"Endpoint 1\" and so on instead of the endpoints' names");
}

// What cannot be said to the parser; empty: nothing is wrong.
std::string WrongOption(int argc, char** argv, const Commands& commands)
{
    // An empty value of a flag would read as none.
    const bool emptySuffix = std::find(argv, argv + argc, std::string_view("--backup=")) != argv + argc;
    const std::optional<std::string>& suffix = commands.apply.backupSuffix;
    if (emptySuffix || (suffix && !IsSuffix(*suffix)) || !IsSuffix(commands.restore.backupSuffix))
        return BadSuffix;
    if (commands.apply.exitCode && !commands.apply.dryRun)
        return "--exit-code goes with --dry-run";
    return {};
}

}  // namespace

Command ReadCommandLine(int argc, char** argv)
{
    Commands commands;
    CLI::App app("Fits the three QOV configuration files to the audio processing modules of this machine.",
                 "qovxml-configure");
    app.set_version_flag("--version", "qovxml-configure " QOVXML_VERSION);
    app.require_subcommand(1);
    app.footer(std::string(ApplyExample) + "\n\n" + RestoreExample + "\n\n" + Footer);
    AddApply(app, commands);
    AddRestore(app, commands.restore);
    AddLooks(app, commands);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) != 0 ? WrongUsage : std::cout.flush() ? Done : RunFailed;
    }
    if (*app.get_subcommand("apply")->get_option("--backup"))
        commands.apply.backupSuffix = commands.applySuffix;
    if (const std::string wrong = WrongOption(argc, argv, commands); !wrong.empty())
        return TellWrongUsage(wrong);
    const std::string chosen = app.get_subcommands().front()->get_name();
    return chosen == "apply"     ? Command(commands.apply)
           : chosen == "restore" ? Command(commands.restore)
           : chosen == "list"    ? Command(commands.list)
           : chosen == "trace"   ? Command(commands.trace)
           : chosen == "report"  ? Command(commands.report)
                                 : Command(commands.snapshot);
}

ExitCode TellWrongUsage(const std::string& reason)
{
    std::cerr << reason << "\nRun with --help for more information.\n";
    return WrongUsage;
}

}  // namespace host
