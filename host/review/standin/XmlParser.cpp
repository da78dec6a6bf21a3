#include "host/review/XmlParser.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>

namespace host {

namespace {

struct ParserFreer {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserPtr = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserFreer>;

// The one that a document may have has been taken out.
void RefuseDocumentType(void* parser, const XML_Char*, const XML_Char*, const XML_Char*, int)
{
    XML_StopParser(static_cast<XML_Parser>(parser), XML_FALSE);
}

constexpr std::size_t ChunkSize = 1U << 20;

}  // namespace

std::optional<XmlFault> ParserFault(const std::string& document)
{
    const ParserPtr parser(XML_ParserCreate("UTF-8"));
    if (!parser)
        throw std::bad_alloc();
    XML_UseParserAsHandlerArg(parser.get());
    XML_SetStartDoctypeDeclHandler(parser.get(), RefuseDocumentType);
    std::string_view rest = document;
    bool last = false;
    while (!last) {
        const std::string_view chunk = rest.substr(0, ChunkSize);
        rest.remove_prefix(chunk.size());
        last = rest.empty();
        if (XML_Parse(parser.get(), chunk.data(), static_cast<int>(chunk.size()), last ? XML_TRUE : XML_FALSE) !=
            XML_STATUS_OK)
            return XmlFault{XML_GetCurrentLineNumber(parser.get()), XML_ErrorString(XML_GetErrorCode(parser.get()))};
    }
    return std::nullopt;
}

}  // namespace host
