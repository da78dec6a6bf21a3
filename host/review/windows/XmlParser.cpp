#include "host/review/XmlParser.h"

#include "common/ComPtr.h"

#include <windows.h>

#include <objidl.h>
#include <shlwapi.h>
#include <xmllite.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace host {

namespace {

// Every Windows has it; not every toolchain has a library to link it by.
template <class Function>
Function* XmlLite(const char* name)
{
    static const HMODULE library = LoadLibraryExW(L"xmllite.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const FARPROC function = library != nullptr ? GetProcAddress(library, name) : nullptr;
    if (function == nullptr)
        throw std::runtime_error("Windows' XML parser (xmllite.dll) cannot be loaded");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(function));
}

struct Reason {
    unsigned int code;
    const char* text;
};
constexpr Reason Reasons[] = {
    {MX_E_INPUTEND, "the text ends within an element or other markup"},
    {WC_E_WHITESPACE, "white space is missing"},
    {WC_E_SEMICOLON, "a semicolon is missing"},
    {WC_E_GREATERTHAN, "a closing angle bracket is missing"},
    {WC_E_QUOTE, "a quotation mark is missing"},
    {WC_E_EQUAL, "an equals sign is missing"},
    {WC_E_LESSTHAN, "an opening angle bracket stands where it must not, or is missing"},
    {WC_E_XMLCHARACTER, "a character that XML does not allow"},
    {WC_E_NAMECHARACTER, "a character that a name must not hold"},
    {WC_E_SYNTAX, "wrong syntax"},
    {WC_E_COMMENT, "\"--\" within a comment"},
    {WC_E_NAME, "a name is wrong"},
    {WC_E_ROOTELEMENT, "there is no root element, or more than one"},
    {WC_E_ELEMENTMATCH, "an end tag that does not fit the start tag"},
    {WC_E_UNIQUEATTRIBUTE, "an attribute twice"},
    {WC_E_LEADINGXML, "the XML declaration does not stand at the beginning"},
    {WC_E_XMLDECL, "the XML declaration is wrong"},
    {WC_E_UNDECLAREDENTITY, "an undeclared entity"},
    {WC_E_DTDPROHIBITED, "a second document type declaration"},
    {WC_E_CDSECTEND, "\"]]>\" within text"},
};

std::string ReasonOf(HRESULT result)
{
    for (const Reason& row : Reasons)
        if (row.code == static_cast<unsigned int>(result))
            return row.text;
    char text[40];
    std::snprintf(text, sizeof(text), "XML error 0x%08x", static_cast<unsigned int>(result));
    return text;
}

void Check(HRESULT result)
{
    if (FAILED(result))
        throw std::runtime_error("Windows' XML parser cannot be used: " + ReasonOf(result));
}

// One root element with everything but white space, comments and instructions inside it: not every reader looks at
// that.
class Structure {
public:
    // False for a node that must not stand where it does.
    bool Take(XmlNodeType type, bool empty)
    {
        if (type == XmlNodeType_Element) {
            if (depth_ == 0 && hasRoot_)
                return false;
            hasRoot_ = true;
            depth_ += empty ? 0 : 1;
        } else if (type == XmlNodeType_EndElement) {
            if (depth_ == 0)
                return false;
            --depth_;
        } else if (type == XmlNodeType_Text || type == XmlNodeType_CDATA) {
            return depth_ > 0;
        }
        return true;
    }
    [[nodiscard]] bool IsWhole() const { return hasRoot_ && depth_ == 0; }

private:
    bool hasRoot_ = false;
    std::size_t depth_ = 0;
};

}  // namespace

std::optional<XmlFault> ParserFault(const std::string& document)
{
    if (document.size() > std::numeric_limits<UINT>::max())
        return XmlFault{1, "the file is too large"};
    qov::ComPtr<IStream> stream;
    *stream.Put() =
        SHCreateMemStream(reinterpret_cast<const BYTE*>(document.data()), static_cast<UINT>(document.size()));
    if (!stream)
        throw std::bad_alloc();
    qov::ComPtr<IUnknown> input;
    Check(XmlLite<decltype(CreateXmlReaderInputWithEncodingName)>("CreateXmlReaderInputWithEncodingName")(
        stream.Get(), nullptr, L"UTF-8", FALSE, nullptr, input.Put()));
    qov::ComPtr<IXmlReader> reader;
    Check(XmlLite<decltype(CreateXmlReader)>("CreateXmlReader")(__uuidof(IXmlReader), reader.PutVoid(), nullptr));
    Check(reader->SetProperty(XmlReaderProperty_MaxElementDepth, std::numeric_limits<INT>::max()));
    Check(reader->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit));
    Check(reader->SetInput(input.Get()));
    // A document has no more nodes than bytes; a parser that goes on has lost its way.
    HRESULT result = S_OK;
    Structure structure;
    for (std::size_t left = document.size() + 1; result == S_OK && left > 0; --left) {
        XmlNodeType type = XmlNodeType_None;
        result = reader->Read(&type);
        if (result == S_OK && !structure.Take(type, reader->IsEmptyElement() != FALSE))
            result = static_cast<HRESULT>(WC_E_ROOTELEMENT);
    }
    if (result == S_FALSE && structure.IsWhole())
        return std::nullopt;
    if (SUCCEEDED(result))
        result = static_cast<HRESULT>(result == S_FALSE ? MX_E_INPUTEND : WC_E_SYNTAX);
    UINT line = 0;
    (void)reader->GetLineNumber(&line);
    return XmlFault{std::max<std::size_t>(line, 1), ReasonOf(result)};
}

}  // namespace host
