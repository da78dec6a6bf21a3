// The one difference between the systems in judging XML: whose parser does it.
#pragma once

#include "host/review/WellFormed.h"

#include <optional>
#include <string>

namespace host {

// Well-formedness of a document in UTF-8 that declares no other encoding, with no document type and no colon in names.
std::optional<XmlFault> ParserFault(const std::string& document);

}  // namespace host
