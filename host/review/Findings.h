// What a run found and did, read from its messages. Texts that come from the machine are as it gives them: they may
// hold anything, and are made harmless only where they are shown (host/review/ShownText.h).
#pragma once

#include "rehearsal/Rehearsal.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Indices of Outcome::files.
enum File : std::size_t { ConfigurationFile, SettingsFile, PipelinesFile };

// One entry of the discovery report, in UTF-8.
struct FoundModule {
    std::string makersName;  // "ZAN APO MFX", "SPATIALF", ...; empty: of another maker
    std::string guid;
    std::string deviceId;
    std::string endpointName;
    std::string endpointGuid;
    std::string friendlyName;  // of the endpoint; empty: not told
    std::string location;      // "APO" or "FW"
    std::string level;         // "Not wrapped" or "Wrapped"
    std::string type;          // "LFX", "GFX", "SFX", "MFX" or "EFX"
    std::string flow;          // "Render" or "Capture"
    std::string pin{};         // of a firmware module: on which it was reported, decimal
};

enum class WindowsGeneration { Unknown, Windows8Point0OrLower, Windows8Point1OrGreater };

// A section of the configuration file or a domain of the settings file, and what the run wanted of it.
struct BlockState {
    File file = ConfigurationFile;
    std::string name;
    bool on = false;
    bool present = false;  // the name occurs in the file
};

struct ValueSet {
    File file = ConfigurationFile;
    std::string name;     // for people: "DeviceId", "EndpointName", "ModuleGuid", "ParamId (DEFAULT mode)", ...
    std::string keyword;  // what else its line holds; may be empty
    std::string tag;      // what stands before the value in the file
    std::string value;    // the bytes
};

struct Findings {
    std::optional<std::size_t> deviceCount;    // active endpoints; none: the run ended before it counted them
    bool modulesTold = false;                  // the run came to its report of them
    std::vector<FoundModule> modules;          // all, in the order of discovery
    std::optional<std::size_t> makersModules;  // as the run counted them; none: it ended before
    WindowsGeneration generation = WindowsGeneration::Unknown;
    std::vector<BlockState> blocks;     // in the order in which the run came to them
    std::vector<ValueSet> values;       // likewise
    std::optional<File> fileUnderEdit;  // the file that was read last
    std::array<bool, 3> filesRead{};
    bool pipelinesWanted = false;  // the run came to the pipelines definition file
};

Findings ReadFindings(const rehearsal::Outcome& outcome);

// Whether the run passes the maker's module over on this Windows.
bool IsPassedOver(const FoundModule& module, WindowsGeneration generation);

// The names that the run looks for as sections and as domains.
inline constexpr std::array<const char*, 4> BlockNames{"OrvexZan_Lfx_Mfx_Apo", "OrvexZan_Sfx_Apo", "OrvexZan_Efx_Apo",
                                                       "OrvexZan_SPATIALF"};

}  // namespace host
