// One whole run of the library on a described machine: MACHINE CONFIGURATION SETTINGS PIPELINES.
#include "QovXml.h"
#include "machine/MachineJson.h"
#include "simulation/SimulatedMachine.h"

#include <cstdio>
#include <exception>

namespace {

class QuietLogger final : public ILogger {
    void Log(LogLevel, const std::wstring&) override {}
};

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 5)
        return 2;
    try {
        const simulation::SimulatedMachine machine(machine::ReadMachine(argv[1]));
        QuietLogger logger;
        QovXml::ConfigureQovXmls({argv[2], argv[3], argv[4]}, logger);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
