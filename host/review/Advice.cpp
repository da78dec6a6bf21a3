#include "host/review/Advice.h"

namespace host {

namespace {

constexpr std::string_view RestartAudio =
    "Restart the Windows Audio service or the computer and try again; if it stays, update the audio driver.";
constexpr std::string_view PluggedMeanwhile =
    "An audio device may have come or gone meanwhile: try again with all devices plugged in or out; if it stays, "
    "restart "
    "the Windows Audio service.";
constexpr std::string_view EndpointProperties =
    "Windows' record of one audio endpoint is damaged: remove the device in the device manager, let Windows find it "
    "again, and try again.";
constexpr std::string_view RegistryAccess =
    "Run as an administrator. If it stays, the endpoint's record in the registry is damaged: remove the device in the "
    "device manager and let Windows find it again.";
constexpr std::string_view EffectRegistration =
    "The effect registration of an audio endpoint is damaged: install the audio driver or the effect's package again.";
constexpr std::string_view OneApo =
    "Uninstall all but one of the Orvex ZAN APO packages, or install the audio driver again, so that one endpoint "
    "carries "
    "one of them.";
constexpr std::string_view OneEndpoint =
    "Install the audio driver again: all Orvex modules must belong to one audio endpoint.";
constexpr std::string_view Report = "This cannot come about on a machine. Report it, with the log.";
constexpr std::string_view RestoreBlock =
    "Put the file back from a backup or from its package: each block takes one start "
    "tag, its name and one end tag, on lines of their own.";
constexpr std::string_view RemoveComment =
    "Remove the comment from the lines of this block, or move it in front of the block.";
constexpr std::string_view CommentByHand =
    "Remove the comment that was put there by hand; a block that is off begins with \"<!--\" and ends with \"-->\", at "
    "the "
    "very ends of its lines.";
constexpr std::string_view RestoreValue =
    "Put the file back from its package, or add the line: the tag, a value and a double quote must stand on one line.";

// NOLINTBEGIN(modernize-raw-string-literal): every row is written the same way
constexpr Advice Table[] = {
    // Entry and endpoints.
    {"Failed to initialize COM interface",
     "Run it in a process or thread of its own: this one is in a single-threaded COM apartment (80010106). With "
     "another "
     "code restart the computer."},
    {"Failed to initialize COM device interface! Result: 0x", RestartAudio},
    {"EnumAudioEndpoints failed! Result: 0x", RestartAudio},
    {"GetCount() for devices list failed! Result: 0x", RestartAudio},
    {"Failed to get device from collection! Result: 0x", PluggedMeanwhile},
    {"Failed to get device id! Result: 0x", PluggedMeanwhile},
    {"Failed to open device property store! Result: 0x", PluggedMeanwhile},
    {"Failed to read device GUID! Result: 0x", EndpointProperties},
    {"Failed to convert device GUID! Result: 0x", EndpointProperties},
    {"Endpoint interface query failed! Result: 0x", RestartAudio},
    {"GetDataFlow failed! Result: 0x", PluggedMeanwhile},
    {"Device activation failed! Result: 0x", PluggedMeanwhile},
    {"GetConnector failed! Result: 0x", PluggedMeanwhile},
    {"CoCreateInstance() failed with status: 0x", RestartAudio},
    {"EnumAudioEndpoints() failed with status: ", RestartAudio},
    {"pCollection->GetCount() failed with status: ", RestartAudio},
    {"pCollection->Item() failed with status: ", PluggedMeanwhile},
    {"pEndpoint->GetId() failed with status: ", PluggedMeanwhile},
    {"pEndpoint->OpenPropertyStore() failed with status: ", PluggedMeanwhile},
    {"pProps->GetValue() failed with status: ", EndpointProperties},
    {"Unsupported IAP module type",
     "Update the audio driver: it reports a firmware module of a type that is not known."},
    // Registry.
    {"Unable to open registry key", RegistryAccess},
    {"Unable to close registry key", RegistryAccess},
    {"Could not read registry value. RegOpenKeyEx: 0x", RegistryAccess},
    {"Could not read registry value. RegQueryValueEx: 0x", RegistryAccess},
    {"StringFromCLSID() call failed", "Close other programs to free memory and try again."},
    {"Call to CLSIDFromString() API failed with error code: 0x", EffectRegistration},
    {"Unsupported registry value type", EffectRegistration},
    {"invalid stoi argument", EffectRegistration},
    {"stoi argument out of range", EffectRegistration},
    {"Unsupported PID", EffectRegistration},
    {"Unsupported endpoint property type.", Report},
    {"Unsupported endpoint type. Use either 'Capture' or 'Render'.", Report},
    {"Unsupported endpoint data flow.", Report},
    // Modules that cannot be configured.
    {"Invalid number of installed Orvex ZAN APOs in * mode: ", OneApo},
    {"APO module installed in more than one mode", OneApo},
    {"Invalid number of discovered SPATIALF modules: ",
     "Update or install the audio driver again: its firmware may carry three SPATIALF modules at most."},
    {"Invalid SPATIALF modules configuration.", OneEndpoint},
    {"Orvex ZAN APO & FW audio modules found on different endpoints", OneEndpoint},
    {"Not supported APO module type", Report},
    // Files.
    {"File \"*\" not found.", "Check that the file is there and may be read."},
    {"No keyword found: ",
     "Put the file back from its package, or add the line: \"Subeffects_DefaultMode\" and "
     "\"Subeffects_SpeechMode\" must each stand on one line with the tag, a value and a double quote."},
    {"No tag found: ", RestoreValue},
    {"No closing quotation mark found for tag: ", RestoreValue},
    {"Section start tag \"*\"not found", RestoreBlock},
    {"Parameter block end for keyword \"*\"not found", RestoreBlock},
    {"Cannot * block \"*\": line * holds the end of another block", "Give the block lines of its own."},
    {"Cannot * block \"*\": line * starts another block inside it", RestoreBlock},
    {"Cannot * block \"*\": line * ends another block inside it", RestoreBlock},
    {"Cannot * block \"*\": line * closes the element in its start tag",
     "Write the block with a start tag and an end tag of its own."},
    {"Cannot * block \"*\": line * holds a comment marker", RemoveComment},
    {"Cannot * block \"*\": line * does not begin with \"<!--\"", CommentByHand},
    {"Cannot * block \"*\": line * does not end with \"-->\"", CommentByHand},
    {"Cannot * block \"*\": line * holds a further comment marker", CommentByHand},
};
// NOLINTEND(modernize-raw-string-literal)

// Whether the text begins as the pattern does, each "*" standing for any text.
bool Fits(std::string_view text, std::string_view pattern)
{
    const std::size_t star = pattern.find('*');
    const std::string_view start = pattern.substr(0, star);
    if (!text.starts_with(start))
        return false;
    if (star == std::string_view::npos)
        return true;
    pattern.remove_prefix(star + 1);
    for (text.remove_prefix(start.size()); !text.empty(); text.remove_prefix(1))
        if (Fits(text, pattern))
            return true;
    return false;
}

}  // namespace

std::span<const Advice> AllAdvice() { return Table; }

std::string_view WhatToDo(std::string_view message)
{
    for (const Advice& row : Table)
        if (Fits(message, row.message))
            return row.whatToDo;
    return "Run again with --log-file and report it with the log.";
}

}  // namespace host
