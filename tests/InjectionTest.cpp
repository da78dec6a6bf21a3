// Every example machine and every machine of tests/scenarios/, with every platform call of its run failing once and
// every kind of call failing from its n-th time on: what must hold of every run holds. FaultSweepTest says, for one
// machine, what each single failure comes to.
#include "ScenarioCases.h"
#include "machine/MachineJson.h"
#include "support/Trial.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <map>
#include <set>

namespace {

using machine::Fault;
using machine::MachineDescription;
using simulation::CallRecord;

std::vector<std::pair<std::string, MachineDescription>> Machines()
{
    std::vector<std::pair<std::string, MachineDescription>> machines;
    for (const auto& file : std::filesystem::directory_iterator(QOVXML_EXAMPLES "/machines"))
        machines.emplace_back(file.path().filename().string(), machine::ReadMachine(file.path().string()));
    std::set<std::string> texts;
    for (const ScenarioCase& scenario : ReadScenarioCases(QOVXML_SCENARIOS))
        if (texts.insert(scenario.machine).second)
            machines.emplace_back(scenario.suite + "." + scenario.name,
                                  machine::ParseMachine(scenario.machine, scenario.name));
    return machines;
}

LONG FailureOf(const std::string& call)
{
    const bool hresult = machine::FindPlatformCall(call)->result == machine::ResultKind::HResult;
    return hresult ? LONG{E_FAIL} : LONG{ERROR_ACCESS_DENIED};
}

class InjectionTest : public testing::Test {
protected:
    // Runs the action for each call of each machine's run, with its name and occurrence.
    template <class Action>
    void ForEveryCall(Action action)
    {
        for (const auto& [name, machine] : Machines()) {
            SCOPED_TRACE(name);
            const Trial whole = trials_.Run(machine);
            ASSERT_EQ(whole.broken, "");
            std::map<std::string, unsigned> made;
            // Of a ring that ends at the bounds, thousands of calls are alike.
            const std::size_t step = whole.calls.size() > 1000 ? 25 : 1;
            for (std::size_t index = 0; index < whole.calls.size(); ++index) {
                const CallRecord& call = whole.calls[index];
                ++made[call.call];
                if (index % step != 0) {
                    ++leftOut_;
                    continue;
                }
                SCOPED_TRACE(call.call + " #" + std::to_string(made[call.call]));
                action(machine, whole, call, made[call.call]);
                ASSERT_FALSE(HasFailure());
            }
        }
    }

    // A fault of the test goes before one that the machine has by itself. None: this one is left out.
    std::optional<Trial> Inject(const MachineDescription& machine, const std::vector<Fault>& faults)
    {
        if (++offered_ % share_ != 0)
            return std::nullopt;
        ++injected_;
        MachineDescription failing = machine;
        failing.faults.insert(failing.faults.begin(), faults.begin(), faults.end());
        Trial trial = trials_.Run(failing);
        EXPECT_EQ(trial.broken, "");
        completed_ += trial.failure.empty() ? 1 : 0;
        return trial;
    }

    // Tells how many injections were made, and that they are as many as they are meant to be.
    void TearDown() override
    {
        std::cout << injected_ << " injections, " << completed_ << " of them in runs that complete; " << leftOut_
                  << " calls of rings left out" << std::endl;
        EXPECT_GE(offered_, 10000u);
        EXPECT_EQ(injected_, offered_ / share_);
        EXPECT_GT(completed_, injected_ / 4);
        EXPECT_LT(completed_, injected_);
    }

private:
    const Trials trials_;
    const unsigned share_ = TestShare();
    unsigned offered_ = 0;
    unsigned injected_ = 0;
    unsigned leftOut_ = 0;
    unsigned completed_ = 0;
};

TEST_F(InjectionTest, EveryCallFailsOnce)
{
    ForEveryCall([this](const MachineDescription& machine, const Trial&, const CallRecord& call, unsigned occurrence) {
        Inject(machine, {{call.call, occurrence, FailureOf(call.call)}});
    });
}

TEST_F(InjectionTest, EveryKindOfCallFailsFromThenOn)
{
    ForEveryCall([this](const MachineDescription& machine, const Trial&, const CallRecord& call, unsigned occurrence) {
        // A fault each, since a fault stands for one call or for all; a run in which calls fail makes more of some. 200
        // are "from then on" but for rings.
        std::vector<Fault> faults;
        for (unsigned later = 0; later < 200; ++later)
            faults.push_back({call.call, occurrence + later, FailureOf(call.call)});
        Inject(machine, faults);
    });
}

TEST_F(InjectionTest, AnotherSuccessCodeChangesNothing)
{
    ForEveryCall(
        [this](const MachineDescription& machine, const Trial& whole, const CallRecord& call, unsigned occurrence) {
            const bool hresult = machine::FindPlatformCall(call.call)->result == machine::ResultKind::HResult;
            if (!hresult || call.result != S_OK)
                return;
            if (const auto trial = Inject(machine, {{call.call, occurrence, S_FALSE}})) {
                EXPECT_EQ(trial->failure, whole.failure);
                EXPECT_EQ(trial->log, whole.log);
                EXPECT_EQ(trial->files, whole.files);
            }
        });
}

}  // namespace
