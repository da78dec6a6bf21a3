// The machine that the program runs on.
#pragma once

#include <string>

namespace host {

// Whether the audio of this machine can be asked: not without Windows.
bool HasWindowsAudio();

// The system and its version, as it reports itself to this program.
std::string SystemName();

}  // namespace host
