// What holds of every run of the library, whatever the machine says and whatever fails on it.
#pragma once

#include "QovXml.h"
#include "machine/MachineDescription.h"
#include "simulation/CallMonitor.h"
#include "support/Scratch.h"

#include <array>
#include <functional>
#include <string>
#include <vector>

struct Trial {
    std::string failure;  // what the run threw; empty: it completed
    std::vector<std::wstring> log;
    std::vector<simulation::CallRecord> calls;
    std::array<std::string, 3> files;  // afterwards: configuration, settings, pipelines definition
    // A line for each promise that the run broke: a message that docs/MESSAGES.md does not know, something of the
    // platform still held, a file that is not, byte for byte, what the log says of it, more calls than the bounds
    // allow.
    std::string broken;
};

// Runs on the files of tests/scenarios/files/, which every run finds anew: the settings with LF alone at the lines'
// ends.
class Trials {
public:
    Trials();

    using Operation = std::function<void(const QovXml::Config&, ILogger&)>;
    // The operation ends in QovXml::ConfigureQovXmls; what else it throws than a std::exception passes through.
    Trial Run(const machine::MachineDescription& machine, const Operation& operation = QovXml::ConfigureQovXmls) const;

private:
    void CheckFiles(Trial& trial) const;

    ScratchFolder folder_;
    std::array<std::string, 3> paths_;
    std::array<std::string, 3> before_;
    std::array<std::string, 3> withCrLf_;  // the same with every line end as the run writes it
};

// Whether docs/MESSAGES.md has a heading for the message.
bool IsDocumented(const std::string& message);

// QOVXML_TEST_SHARE=N: of thousands of runs a slow build makes every N-th alone. 1 where it is not set.
unsigned TestShare();
