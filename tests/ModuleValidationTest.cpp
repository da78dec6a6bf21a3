// On Windows 8.1 and later.
#include "run/ModuleValidation.h"

#include "support/Failures.h"
#include "support/RecordingLogger.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <tuple>

namespace {

using namespace qov;

// One word a module: its kind (L, M, E, S: the maker's APO; F: SPATIALF; X: another's), then signs of what differs from
// the others': its device id (d, or D in letter case alone), its endpoint name (n, N, or 0 at the end alone), or
// fields that do not count (!). The pins number the modules from 1.
ModuleList Modules(const std::string& words)
{
    std::map<char, GUID> guids{{'L', LfxApoClassId}, {'M', MfxApoClassId},    {'E', EfxApoClassId},
                               {'S', SfxApoClassId}, {'F', SpatialfModuleId}, {'X', MfxApoClassId}};
    ++guids['X'].Data4[7];
    ModuleList modules;
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        const auto has = [&](char sign) { return word.find(sign, 1) != std::string::npos; };
        AudioModule module;
        module.ModuleGuid = guids.at(word[0]);
        module.Endpoint.DeviceId = has('d') ? L"hdaudio\\2" : has('D') ? L"HDaudio\\1" : L"hdaudio\\1";
        module.Endpoint.EndpointName = has('n') ? L"Headphones" : has('N') ? L"speakers" : L"Speakers";
        if (has('0'))
            module.Endpoint.EndpointName += L'\0';
        if (has('!')) {
            module.Location = word[0] == 'F' ? ModuleLocation::APO : ModuleLocation::FW;
            module.Endpoint.AudioEndpointGuid = SpatialfModuleId;
            module.Endpoint.Flow = qov::DataFlow::Capture;
        }
        modules.push_back(module);
        modules.back().PropertyPinId = static_cast<ULONG>(modules.size());
    }
    return modules;
}

TEST(ModuleValidationTest, SettlesTheModulesThatCount)
{
    // The numbers of the active APO and of the SPATIALF module, 0 for none.
    const std::tuple<const char*, ULONG, ULONG> rows[] = {
        {"", 0, 0},      {"X X", 0, 0},          {"X M", 2, 0},      {"E", 1, 0},
        {"S", 1, 0},     {"L Ld", 0, 0},         {"Ld L S F", 3, 4}, {"Ln F", 0, 2},
        {"Fn Fn", 0, 1}, {"X! F! F M! F", 4, 2}, {"E Xd F", 1, 3},   {"Fd Ed Fd Fd", 2, 1}};
    for (const auto& [modules, activeApo, spatialf] : rows) {
        SCOPED_TRACE(modules);
        RecordingLogger logger;
        const ValidatedModules validated = ValidateModules(Modules(modules), logger);
        EXPECT_EQ(validated.activeApo.value_or(AudioModule{}).PropertyPinId, activeApo);
        EXPECT_EQ(validated.spatialfModule.value_or(AudioModule{}).PropertyPinId, spatialf);
    }
}

TEST(ModuleValidationTest, RefusesByTheFirstRuleThatFails)
{
    const std::pair<const char*, std::vector<const char*>> rows[] = {
        {"Invalid number of installed Orvex ZAN APOs in LFX/MFX mode: 2", {"M Md", "M M S E E"}},
        {"Invalid number of installed Orvex ZAN APOs in EFX mode: 3", {"S S E E E", "M E E E"}},
        {"Invalid number of installed Orvex ZAN APOs in SFX mode: 10", {"M S S S S S S S S S S"}},
        {"APO module installed in more than one mode", {"E M", "M S", "E S F F F F"}},
        {"Invalid number of discovered SPATIALF modules: 4", {"F F F F", "Md F Fn F F"}},
        {"Invalid SPATIALF modules configuration.", {"F Fd", "FD F", "F FN", "F F0", "Fn F F", "F Fn F", "Md F F FN"}},
        {"Orvex ZAN APO & FW audio modules found on different endpoints", {"F Md", "ED F F", "F Sn", "SN F", "S0 F"}}};
    for (const auto& [message, lists] : rows) {
        for (const char* modules : lists) {
            SCOPED_TRACE(modules);
            RecordingLogger logger;
            EXPECT_EQ(MessageOf([&] { ValidateModules(Modules(modules), logger); }), message);
            EXPECT_EQ(logger.messages.size(), 2u);
        }
    }
}

TEST(ModuleValidationTest, KnowsNoModuleOfTheGfxMode)
{
    EXPECT_EQ(MessageOf([] { GetApoModulesOfMode({}, ModuleType::GFX); }), "Not supported APO module type");
}

}  // namespace
