// Texts from files, paths, the machine and its driver, made fit to be shown.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// Well-formed UTF-8: what is none becomes U+FFFD.
std::string Utf8(std::string_view bytes);

// One line for a terminal, in UTF-8: control characters and those that turn the direction of writing become \xNN of
// their bytes.
std::string Harmless(std::string_view bytes);

// The same, to be pasted into a command line, of a POSIX shell or of cmd: in quotes where it must be.
std::string Argument(std::string_view bytes);

// As Harmless, but line feeds stay, and a carriage return before one goes.
std::string HarmlessLines(std::string_view bytes);

// Characters of well-formed UTF-8.
std::size_t Width(std::string_view text);

// The bytes that the library widened one by one.
std::string NarrowUnits(std::wstring_view text);

// A message of the library in UTF-8, not yet harmless. The paths in it, which the library widens byte by byte, become
// what they were.
std::string LogText(const std::wstring& message);

}  // namespace host
