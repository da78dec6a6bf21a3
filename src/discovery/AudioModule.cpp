#include "discovery/AudioModule.h"

#include <cstddef>
#include <iterator>

namespace qov {

namespace {

constexpr const wchar_t* LocationTexts[] = {L"Unknown", L"FW", L"APO"};
constexpr const wchar_t* TypeTexts[] = {L"LFX", L"GFX", L"SFX", L"MFX", L"EFX"};
constexpr const wchar_t* LevelTexts[] = {L"Not wrapped", L"Wrapped"};
constexpr const wchar_t* FlowTexts[] = {L"Render", L"Capture", L"All"};

template <std::size_t Count, class Enumeration>
std::wstring DisplayText(const wchar_t* const (&texts)[Count], Enumeration value)
{
    const auto index = static_cast<std::size_t>(value);
    return index < Count ? texts[index] : L"";
}

}  // namespace

std::wstring ModuleLocationToText(ModuleLocation location) { return DisplayText(LocationTexts, location); }
std::wstring ModuleTypeToText(ModuleType type) { return DisplayText(TypeTexts, type); }
std::wstring ModuleLevelToText(ModuleLevel level) { return DisplayText(LevelTexts, level); }
std::wstring DataFlowToText(DataFlow flow) { return DisplayText(FlowTexts, flow); }

}  // namespace qov
