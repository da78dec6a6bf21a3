#include "host/review/PlainXml.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace host {

namespace {

enum ByteClass : unsigned char { Illegal = 0, Legal = 1, Blank = 2, NameStart = 4, NameByte = 8, Markup = 16 };

constexpr std::array<unsigned char, 256> MakeClasses()
{
    std::array<unsigned char, 256> classes{};
    for (std::size_t byte = 0; byte < classes.size(); ++byte) {
        const bool letter =
            (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte >= 0x80 || byte == '_' || byte == ':';
        const bool blank = byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
        const bool further = (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
        unsigned int bits = blank ? Legal | Blank : byte >= ' ' ? Legal : Illegal;
        if (letter)
            bits |= NameStart;
        if (letter || further)
            bits |= NameByte;
        if (byte == '<' || byte == '&' || byte == ']')
            bits |= Markup;
        classes[byte] = static_cast<unsigned char>(bits);
    }
    return classes;
}
constexpr std::array<unsigned char, 256> Classes = MakeClasses();

constexpr std::string_view Declarations[] = {R"(<?xml version="1.0" encoding="UTF-8"?>)",
                                             R"(<?xml version="1.0" encoding="utf-8"?>)", R"(<?xml version="1.0"?>)"};
constexpr std::string_view References[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};

unsigned char ClassOf(char byte) { return Classes[static_cast<unsigned char>(byte)]; }

bool IsLegal(char byte) { return (ClassOf(byte) & Legal) != 0; }

// What it does not know, or what is a fault, ends the look: every step gives false.
class Look {
public:
    explicit Look(std::string_view bytes) : rest_(bytes) {}

    bool IsWellFormed()
    {
        Skip("\xEF\xBB\xBF");
        (void)std::any_of(std::begin(Declarations), std::end(Declarations),
                          [this](std::string_view declaration) { return Skip(declaration); });
        while (!rest_.empty())
            if (!(rest_.front() == '<' ? TakeMarkup() : TakeText()))
                return false;
        return hasRoot_ && open_.empty();
    }

private:
    [[nodiscard]] bool Is(unsigned char wanted) const
    {
        return !rest_.empty() && (ClassOf(rest_.front()) & wanted) != 0;
    }

    bool Skip(std::string_view text)
    {
        if (!rest_.starts_with(text))
            return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    // Gives the bytes up to the first that is not of these classes, or is of those.
    std::string_view TakeWhile(unsigned char wanted, unsigned char unwanted = 0)
    {
        std::size_t size = 0;
        for (; size < rest_.size(); ++size) {
            const unsigned char bits = ClassOf(rest_[size]);
            if ((bits & wanted) == 0 || (bits & unwanted) != 0)
                break;
        }
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }

    bool TakeReference()
    {
        return std::any_of(std::begin(References), std::end(References),
                           [this](std::string_view reference) { return Skip(reference); });
    }

    bool TakeText()
    {
        if (open_.empty())
            return !TakeWhile(Blank).empty();
        if (rest_.front() == '&')
            return TakeReference();
        if (rest_.front() == ']') {
            rest_.remove_prefix(1);
            return !rest_.starts_with("]>");
        }
        return !TakeWhile(Legal, Markup).empty();
    }

    bool TakeMarkup()
    {
        if (Skip("<!--"))
            return TakeComment();
        if (Skip("</"))
            return TakeEndTag();
        rest_.remove_prefix(1);
        return TakeStartTag();
    }

    bool TakeComment()
    {
        const std::size_t end = rest_.find("--");
        if (end == std::string_view::npos)
            return false;
        const std::string_view text = rest_.substr(0, end);
        rest_.remove_prefix(end);
        return std::all_of(text.begin(), text.end(), IsLegal) && Skip("-->");
    }

    bool TakeEndTag()
    {
        if (open_.empty() || TakeName() != open_.back())
            return false;
        open_.pop_back();
        TakeWhile(Blank);
        return Skip(">");
    }

    std::string_view TakeName() { return Is(NameStart) ? TakeWhile(NameByte) : std::string_view(); }

    bool TakeStartTag()
    {
        const std::string_view name = TakeName();
        if (name.empty() || (open_.empty() && hasRoot_))
            return false;
        hasRoot_ = true;
        attributes_.clear();
        for (;;) {
            const bool parted = !TakeWhile(Blank).empty();
            if (Skip("/>"))
                return true;
            if (Skip(">")) {
                open_.push_back(name);
                return true;
            }
            if (!parted || !TakeAttribute())
                return false;
        }
    }

    bool TakeAttribute()
    {
        constexpr std::size_t Most = 32;  // each is compared with all
        const std::string_view name = TakeName();
        if (name.empty() || attributes_.size() == Most ||
            std::find(attributes_.begin(), attributes_.end(), name) != attributes_.end())
            return false;
        attributes_.push_back(name);
        TakeWhile(Blank);
        if (!Skip("="))
            return false;
        TakeWhile(Blank);
        return !rest_.empty() && (rest_.front() == '"' || rest_.front() == '\'') && TakeValue(rest_.front());
    }

    bool TakeValue(char quote)
    {
        rest_.remove_prefix(1);
        for (;;) {
            std::size_t size = 0;
            while (size < rest_.size() && rest_[size] != quote && rest_[size] != '<' && rest_[size] != '&' &&
                   IsLegal(rest_[size]))
                ++size;
            rest_.remove_prefix(size);
            if (Skip(std::string_view(&quote, 1)))
                return true;
            if (!TakeReference())
                return false;
        }
    }

    std::string_view rest_;
    std::vector<std::string_view> open_;        // elements
    std::vector<std::string_view> attributes_;  // of the tag at hand
    bool hasRoot_ = false;
};

}  // namespace

bool IsPlainXml(std::string_view bytes) { return Look(bytes).IsWellFormed(); }

}  // namespace host
