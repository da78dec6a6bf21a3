#include "host/review/XmlParser.h"

#include <windows.h>

#include <objidl.h>
#include <shlwapi.h>
#include <xmllite.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace host {

namespace {

template <class Interface>
class Owner {
public:
    Owner() = default;
    explicit Owner(Interface* object) : object_(object) {}
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner()
    {
        if (object_ != nullptr)
            object_->Release();
    }

    Interface* operator->() const { return object_; }
    [[nodiscard]] Interface* Get() const { return object_; }
    void** PutVoid() { return reinterpret_cast<void**>(&object_); }

private:
    Interface* object_ = nullptr;
};

// Every Windows has it; not every toolchain has a library to link it by.
using CreateReader = HRESULT(STDAPICALLTYPE*)(REFIID, void**, IMalloc*);
CreateReader XmlLite()
{
    static const HMODULE library = LoadLibraryExW(L"xmllite.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const FARPROC create = library != nullptr ? GetProcAddress(library, "CreateXmlReader") : nullptr;
    if (create == nullptr)
        throw std::runtime_error("Windows' XML parser (xmllite.dll) cannot be loaded");
    return reinterpret_cast<CreateReader>(reinterpret_cast<void*>(create));
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

}  // namespace

std::optional<XmlFault> ParserFault(const std::string& document)
{
    if (document.size() > std::numeric_limits<UINT>::max())
        return XmlFault{1, "the file is too large"};
    const Owner<IStream> stream(
        SHCreateMemStream(reinterpret_cast<const BYTE*>(document.data()), static_cast<UINT>(document.size())));
    if (stream.Get() == nullptr)
        throw std::bad_alloc();
    Owner<IXmlReader> reader;
    Check(XmlLite()(__uuidof(IXmlReader), reader.PutVoid(), nullptr));
    Check(reader->SetProperty(XmlReaderProperty_MaxElementDepth, std::numeric_limits<INT>::max()));
    Check(reader->SetInput(stream.Get()));
    HRESULT result = S_OK;
    while (result == S_OK) {
        XmlNodeType type = XmlNodeType_None;
        result = reader->Read(&type);
    }
    if (SUCCEEDED(result))
        return std::nullopt;
    UINT line = 0;
    (void)reader->GetLineNumber(&line);
    return XmlFault{line, ReasonOf(result)};
}

}  // namespace host
