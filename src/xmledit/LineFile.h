// Text files as lists of lines. Bytes are never decoded; what is between two line ends stays as it is.
#pragma once

#include <string>
#include <vector>

namespace qov {

// One element per line, without its line end.
using LineFile = std::vector<std::string>;

// Lines end at LF; one CR directly before it belongs to the line end. A last line without a line end counts.
// Throws "File "<path>" not found." when the file cannot be opened, whatever the cause; a read error after that ends
// the list quietly.
LineFile ReadLineFile(const std::string& path);

// Replaces the file: every line is followed by CR LF, and an LF byte within a line becomes CR LF too, as in the text
// mode of the Windows C runtime. Each line reaches the system before the next is written, and the first that cannot be
// written ends the file. Reports no failure; a file that cannot be opened stays as it is.
void WriteLineFile(LineFile lines, const std::string& path);

}  // namespace qov
