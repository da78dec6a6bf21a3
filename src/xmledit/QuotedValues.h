// Values inside double-quoted attribute values: a fixed tag such as "DeviceId:" starts a value, the next double quote
// on the line ends it. Texts are bytes and compared exactly.
#pragma once

#include "xmledit/LineFile.h"

#include <string>

namespace qov {

// Replaces the value on the first line that holds the keyword (any line, for an empty keyword), the tag, and a double
// quote after the tag. Throws, with the tag behind it and the lines unchanged: "No keyword found: ", "No tag found: ",
// "No closing quotation mark found for tag: ".
void SetQuotedValue(LineFile& lines, const std::string& keyword, const std::string& tag, const std::string& value);

// In the configuration file.
void SetDeviceId(LineFile& lines, const std::string& value);
void SetEndpointName(LineFile& lines, const std::string& value);

// In the APO pipelines definition file. When the SPEECH value cannot be set, the DEFAULT value is set already.
void SetModuleGuid(LineFile& lines, const std::string& value);
void SetModeParamIds(LineFile& lines, const std::string& defaultModeValue, const std::string& speechModeValue);

// One byte per UTF-16 unit: its low 8 bits.
std::string NarrowText(const std::wstring& text);

// "&" becomes "&amp;"; nothing else is escaped, and no entity is recognised.
std::string EscapeAmpersands(const std::string& text);

std::string CommasToColons(const std::string& text);

}  // namespace qov
