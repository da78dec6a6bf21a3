// Pieces of HTML.
#pragma once

#include <string>
#include <string_view>

namespace host::html {

// Text between tags or in a quoted attribute, from bytes that may hold anything: one line, as Harmless shows it.
std::string Text(std::string_view bytes);

// "<name attributes>content</name>"; the content is HTML already, attributes come as "class=\"x\"".
std::string Element(std::string_view nameAndAttributes, std::string_view content);

// Text of a length that is no list of words: ids and codes, which may be broken anywhere.
std::string Code(std::string_view bytes);

std::string Base64(std::string_view bytes);

}  // namespace host::html
