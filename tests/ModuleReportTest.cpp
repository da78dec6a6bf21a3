#include "discovery/ModuleDiscovery.h"

#include "support/RecordingLogger.h"

#include <gtest/gtest.h>

#include <locale>
#include <tuple>

namespace {

using namespace qov;

// A host's locale that sets a comma between any two digits.
struct Grouping : std::numpunct<wchar_t> {
    std::string do_grouping() const override { return "\1"; }
    wchar_t do_thousands_sep() const override { return L','; }
};

TEST(ModuleReportTest, ListsTheModulesInOneMessage)
{
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
    const AudioEndpoint endpoint{{0xA, 0xB, 0xC, {1, 2, 3, 4, 5, 6, 7, 8}}, qov::DataFlow::Capture, L"d&i", L"\x20ac"};
    const GUID guid{0x7C708106, 0x3AFF, 0x40FE, {0x88, 0xBE, 0x8C, 0x99, 0x9B, 0x3F, 0x74, 0x45}};
    const AudioModule fw{guid, ModuleLocation::FW, ModuleType::LFX, ModuleLevel::Wrapped, endpoint, {}, 4294967295};
    const AudioModule apo{guid, ModuleLocation::APO, ModuleType{99}, ModuleLevel{2}, endpoint, {}, 3};
    AudioModule newFw, nowhere = apo;
    newFw.Location = ModuleLocation::FW;
    nowhere.Location = ModuleLocation{3};
    // What the report says of a module of this GUID and endpoint, and of a new one.
    const std::wstring known =
        L"* Module GUID: {7c708106-3aff-40fe-88be-8c999b3f7445}\n* DeviceId: d&i\n"
        L"* EndpointName: \x20ac\n* Audio Endpoint GUID: {0000000a-000b-000c-0102-030405060708}\n";
    const std::wstring empty =
        L"* Module GUID: {00000000-0000-0000-0000-000000000000}\n* DeviceId: \n"
        L"* EndpointName: \n* Audio Endpoint GUID: {00000000-0000-0000-0000-000000000000}\n";
    const std::wstring odd = L"\n* Level: \n* Type: \n* Flow: Capture\n";
    const std::wstring initial = L"\n* Level: Not wrapped\n* Type: EFX\n* Flow: \n";
    const std::tuple<ModuleList, std::wstring, std::wstring> rows[] = {
        {{}, L"", L"FW audio module(s) count: 0\nDiscovered APO audio module(s) count: 0"},
        {{fw, newFw, apo},
         L"Module #0: \n" + known + L"* Location: FW\n* Level: Wrapped\n* Type: LFX\n* Flow: Capture\n" +
             L"* Property pin ID: 4294967295\nModule #1: \n" + empty + L"* Location: FW" + initial +
             L"* Property pin ID: 0\nModule #2: \n" + known + L"* Location: APO" + odd,
         L"FW audio module(s) count: 2\nDiscovered APO audio module(s) count: 1"},
        {{AudioModule{}, nowhere},
         L"Module #0: \n" + empty + L"* Location: Unknown" + initial + L"Module #1: \n" + known + L"* Location: " + odd,
         L"FW audio module(s) count: 0\nDiscovered APO audio module(s) count: 0"}};
    const std::wstring rule = L"=======================================\n";
    for (const auto& [modules, blocks, counts] : rows) {
        RecordingLogger logger;
        AudioModulesUtils::LogDiscoveredModules(logger, modules);
        const std::wstring report =
            L"\n" + rule + L"Discovered audio modules: \n" + rule + blocks + L"\nDiscovered " + counts + L"\n\n";
        EXPECT_EQ(logger.messages, (std::vector{std::pair{LogLevel::Info, report}}));
    }
    std::locale::global(before);
}

}  // namespace
