// What must hold of every run (support/Trial.h), with every allocation of a run failing once, and every message meeting
// a logger that throws. This program's operator new stands in the place of the C++ library's.
#include "machine/MachineJson.h"
#include "support/Trial.h"

#include "WinApiControl.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

// Allocations of this thread until one fails; 0: none does. Those of other threads are none of the run's.
thread_local std::size_t untilFailure = 0;

struct FailingAllocation {
    explicit FailingAllocation(std::size_t number) { untilFailure = number; }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation() { untilFailure = 0; }

    [[nodiscard]] static bool Met() { return untilFailure == 0; }
};

void* Allocate(std::size_t size)
{
    if (untilFailure > 0 && --untilFailure == 0)
        throw std::bad_alloc();
    if (void* const block = std::malloc(size == 0 ? 1 : size))
        return block;
    throw std::bad_alloc();
}

// With and without firmware modules, each with an effect.
constexpr const char* MachineFiles[] = {"laptop-spatialf.json", "laptop-sfx.json"};

class ShortageTest : public testing::TestWithParam<const char*> {
protected:
    const machine::MachineDescription machine_ =
        machine::ReadMachine(QOVXML_EXAMPLES "/machines/" + std::string(GetParam()));
};

// An exception that is none of the library's.
struct Refused {};

class RefusingLogger final : public ILogger {
public:
    RefusingLogger(ILogger& next, std::size_t accepted) : next_(next), accepted_(accepted) {}
    void Log(LogLevel level, const std::wstring& message) override
    {
        if (accepted_-- == 0)
            throw Refused();
        next_.Log(level, message);
    }

private:
    ILogger& next_;
    std::size_t accepted_;
};

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace {

// The run is ended by the shortage, wherever it comes: it never goes on with less than it found.
TEST_P(ShortageTest, EveryAllocationFailsOnce)
{
    const Trials trials;
    std::size_t failing = 1;
    for (bool met = true; met; failing += TestShare()) {
        SCOPED_TRACE("allocation " + std::to_string(failing));
        const Trial trial = trials.Run(machine_, [&](const QovXml::Config& config, ILogger& logger) {
            // Windows' functions are not watched meanwhile: their record would need memory where none may fail.
            winapi::SetCallHook({});
            const FailingAllocation fails(failing);
            QovXml::ConfigureQovXmls(config, logger);
            met = fails.Met();
        });
        ASSERT_EQ(trial.broken, "");
        ASSERT_EQ(trial.failure, met ? "std::bad_alloc" : "");
    }
    EXPECT_GT(failing, 100u);
    std::cout << (failing - 1) / TestShare() - 1 << " allocations" << std::endl;
}

TEST_P(ShortageTest, EveryMessageMeetsALoggerThatThrows)
{
    const Trials trials;
    const Trial whole = trials.Run(machine_);
    ASSERT_EQ(whole.broken + whole.failure, "");
    for (std::size_t accepted = 0; accepted < whole.log.size(); ++accepted) {
        SCOPED_TRACE("message " + std::to_string(accepted + 1));
        bool refused = false;
        const Trial trial = trials.Run(machine_, [&](const QovXml::Config& config, ILogger& logger) {
            RefusingLogger refusing(logger, accepted);
            try {
                QovXml::ConfigureQovXmls(config, refusing);
            } catch (const Refused&) {
                refused = true;
                throw std::bad_alloc();  // a failure that a trial knows
            }
        });
        EXPECT_TRUE(refused);
        EXPECT_EQ(trial.broken, "");
        EXPECT_EQ(trial.log.size(), accepted);
    }
}

INSTANTIATE_TEST_SUITE_P(, ShortageTest, testing::ValuesIn(MachineFiles),
                         [](const auto& machine) { return std::to_string(machine.index + 1); });

}  // namespace
