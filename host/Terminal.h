// What the standard streams lead to, system by system.
#pragma once

namespace host {

enum class Stream { Output, Error };

// Bytes written to the standard streams arrive as they are, and a terminal takes them as UTF-8.
void SetUpStreams();

// Whether a person reads along who can be shown colours.
bool ShowsColours(Stream stream);

}  // namespace host
