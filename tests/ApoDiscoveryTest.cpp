// How the property id of a wrapped item is read; whole runs show the slots and lists.
#include "discovery/ApoDiscovery.h"

#include "simulation/SimulatedMachine.h"
#include "support/ComApartment.h"
#include "support/Failures.h"
#include "support/RecordingLogger.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

TEST(ApoDiscoveryTest, ReadsPropertyIdsByTheirAsciiDigits)
{
    const std::string good = "(nothing thrown)", unsupported = "Unsupported PID", invalid = "invalid stoi argument",
                      outOfRange = "stoi argument out of range";
    const std::pair<std::wstring, std::string> rows[] = {
        {L"5", good},
        {L" \t\n\v\f\r+0000000000005x7", good},
        {L"5\x0665", good},  // behind it a digit of another script
        {L"-5", unsupported},
        {L"2147483647", unsupported},
        {L"2147483648", outOfRange},
        {L"-2147483648", unsupported},
        {L"-2147483649", outOfRange},
        {L"18446744073709551621", outOfRange},  // 5 in 64 bits
        {L" ", invalid},
        {L"+", invalid},
        {L"- 5", invalid},
        {L"+-5", invalid},
        {L"x5", invalid},
        {L"\x0665", invalid},
        {L"\x3000"
         L"5",
         invalid},  // white space, but not ASCII
    };
    for (const auto& [number, message] : rows) {
        SCOPED_TRACE(testing::PrintToString(number));
        machine::Endpoint endpoint;
        endpoint.guidPropertyText = machine::UpperGuidText(endpoint.guid);
        const std::wstring item = L"{7c708106-3aff-40fe-88be-8c999b3f7445}," + number;
        endpoint.fxProperties = {
            {L"{bac22de4-cf4d-4c1e-8ad6-2ba11e3b7c47},5", REG_SZ, machine::TextData(item + L";" + item)}};
        machine::MachineDescription description;
        description.endpoints = {endpoint};
        const simulation::SimulatedMachine machine(description);
        const ComApartment apartment;
        RecordingLogger logger;
        qov::ModuleList modules;
        errno = ERANGE;  // left behind by somebody else
        EXPECT_EQ(MessageOf([&] { modules = qov::AudioModulesUtils::DiscoverApoModules(logger); }), message);
        EXPECT_EQ(modules.size(), message == good ? 2u : 0u);
        for (const qov::AudioModule& module : modules)
            EXPECT_EQ(module.Type, qov::ModuleType::SFX);
    }
}

}  // namespace
