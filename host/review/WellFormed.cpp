#include "host/review/WellFormed.h"

#include "host/review/PlainXml.h"
#include "host/review/XmlParser.h"

#include <algorithm>
#include <string_view>

namespace host {

namespace {

constexpr std::size_t NotFound = std::string::npos;
constexpr std::string_view Blanks = " \t\n";

bool IsLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }
bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool IsNameByte(char byte)
{
    return IsLetter(byte) || IsDigit(byte) || static_cast<unsigned char>(byte) >= 0x80 || byte == '_' || byte == ':' ||
           byte == '-' || byte == '.';
}

void Blank(std::string& text, std::size_t start, std::size_t end)
{
    std::replace_if(
        text.begin() + static_cast<std::ptrdiff_t>(start), text.begin() + static_cast<std::ptrdiff_t>(end),
        [](char byte) { return byte != '\n'; }, ' ');
}

bool IsVersion(std::string_view value)
{
    return value.size() > 2 && value.starts_with("1.") && std::all_of(value.begin() + 2, value.end(), IsDigit);
}

bool IsEncoding(std::string_view value)
{
    return !value.empty() && IsLetter(value.front()) && std::all_of(value.begin(), value.end(), [](char byte) {
        return IsLetter(byte) || IsDigit(byte) || byte == '.' || byte == '_' || byte == '-';
    });
}

// In the declaration that the text begins with, a value that is no fault becomes the one that every parser knows.
void ReplaceDeclared(std::string& text, std::string_view name, bool (*isFine)(std::string_view), std::string_view known)
{
    const std::size_t end = text.find("?>");
    const std::size_t found = text.find(name);
    if (end == NotFound || found >= end)
        return;
    const std::size_t open = text.find_first_of("\"'", found);
    if (open >= end)
        return;
    const std::size_t close = text.find(text[open], open + 1);
    if (close < end && isFine(std::string_view(text).substr(open + 1, close - open - 1)))
        text.replace(open + 1, close - open - 1, known);
}

// Where the text behind `start` is closed by `end`; the end of all when it never is.
std::size_t Behind(const std::string& text, std::size_t start, std::string_view end)
{
    const std::size_t found = text.find(end, start);
    return found == NotFound ? text.size() : found + end.size();
}

std::size_t DocumentTypeEnd(const std::string& text, std::size_t at)
{
    bool inSubset = false;
    while (at < text.size()) {
        const std::string_view rest = std::string_view(text).substr(at);
        if (rest.starts_with("<!--"))
            at = Behind(text, at + 4, "-->");
        else if (rest.starts_with("<?"))
            at = Behind(text, at + 2, "?>");
        else if (rest.front() == '"' || rest.front() == '\'')
            at = Behind(text, at + 1, rest.substr(0, 1));
        else if (rest.front() == '>' && !inSubset)
            return at + 1;
        else {
            inSubset = rest.front() == '[' || (inSubset && rest.front() != ']');
            ++at;
        }
    }
    return NotFound;
}

// Where a document type declaration begins; only comments and processing instructions stand before it.
std::size_t DocumentTypeStart(const std::string& text)
{
    std::size_t at = 0;
    while ((at = text.find_first_not_of(Blanks, at)) != NotFound) {
        const std::string_view rest = std::string_view(text).substr(at);
        if (rest.starts_with("<!--"))
            at = Behind(text, at + 4, "-->");
        else if (rest.starts_with("<?"))
            at = Behind(text, at + 2, "?>");
        else
            return rest.starts_with("<!DOCTYPE") ? at : NotFound;
    }
    return NotFound;
}

constexpr std::string_view KnownEntities[] = {"amp", "lt", "gt", "quot", "apos"};

// References to entities that a document type may have declared.
void BlankEntities(std::string& text, std::size_t start)
{
    for (std::size_t at = start; (at = text.find('&', at)) != NotFound; ++at) {
        std::size_t end = at + 1;
        while (end < text.size() && IsNameByte(text[end]))
            ++end;
        const std::string_view name = std::string_view(text).substr(at + 1, end - at - 1);
        const bool known =
            std::find(std::begin(KnownEntities), std::end(KnownEntities), name) != std::end(KnownEntities);
        if (end < text.size() && text[end] == ';' && !name.empty() && !known)
            Blank(text, at, end + 1);
    }
}

// The document type becomes an empty comment, so that no parser meets what it would fetch or unfold. The fault is that
// it has no end.
std::optional<XmlFault> BlankDocumentType(std::string& text)
{
    const std::size_t start = DocumentTypeStart(text);
    if (start == NotFound)
        return std::nullopt;
    const std::size_t end = DocumentTypeEnd(text, start + 1);
    if (end == NotFound) {
        const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(start), '\n') + 1;
        return XmlFault{static_cast<std::size_t>(line), "the document type declaration has no end"};
    }
    Blank(text, start, end);
    text.replace(start, 4, "<!--");
    text.replace(end - 3, 3, "-->");
    BlankEntities(text, end);
    return std::nullopt;
}

// Bytes above ASCII and colons become letters, each its own, so that encodings and name spaces play no part.
std::string WithLetters(std::string_view text)
{
    std::string letters;
    letters.reserve(text.size());
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80 && byte != ':') {
            letters += byte;
            continue;
        }
        // U+4E00 and what follows it, in UTF-8.
        letters += '\xE4';
        letters += static_cast<char>(static_cast<unsigned char>(0xB8 + (value >> 6)));
        letters += static_cast<char>(static_cast<unsigned char>(0x80 + (value & 0x3F)));
    }
    return letters;
}

}  // namespace

std::optional<XmlFault> WellFormedFault(const std::string& bytes)
{
    if (IsPlainXml(bytes))
        return std::nullopt;
    std::string text = bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes;
    std::replace(text.begin(), text.end(), '\r', ' ');  // lines are counted by their line feeds
    if (text.starts_with("<?xml") && text.find_first_of(Blanks, 5) == 5) {
        ReplaceDeclared(text, "version", IsVersion, "1.0");
        ReplaceDeclared(text, "encoding", IsEncoding, "UTF-8");
    }
    if (auto fault = BlankDocumentType(text))
        return fault;
    return ParserFault(WithLetters(text));
}

}  // namespace host
