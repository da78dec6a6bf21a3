#include "snapshot/Snapshot.h"

#include "host/commands/Commands.h"
#include "host/commands/Ending.h"
#include "host/commands/Look.h"
#include "host/review/ShownText.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"

#include <optional>

namespace host {

namespace {

// Of the described machine as of any other: asked by its calls.
machine::MachineDescription Take(const ChosenMachine& machine)
{
    std::optional<simulation::SimulatedMachine> simulated;
    if (machine.description)
        simulated.emplace(*machine.description);
    return snapshot::TakeSnapshot();
}

}  // namespace

ExitCode RunSnapshot(const SnapshotOptions& options)
{
    if (const ExitCode code = RefusedOutput(options, options.output, "{"); code != Done)
        return code;
    return RunCommand(options, "", MachineNeed::Own,
                      [&options](const ChosenMachine& machine, const Console& console, LogFile&) {
                          try {
                              machine::MachineDescription taken = Take(machine);
                              if (options.redact)
                                  snapshot::Redact(taken);
                              return WriteResult(options.output, machine::WriteMachine(taken), console);
                          } catch (const simulation::UnusableMachine& unusable) {
                              return TellWrongUsage(Harmless(machine.name) + ": " + Harmless(unusable.what()));
                          } catch (const std::exception& failure) {
                              console.Error(Harmless(failure.what()));
                              return RunFailed;
                          }
                      });
}

}  // namespace host
