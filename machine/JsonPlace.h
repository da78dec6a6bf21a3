// A value of a JSON document together with where it stands, so that what is wrong with it can be said with its place.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace machine {

// What is wrong with a document, so that all of it can be told at once.
class JsonMistakes {
public:
    // `source` names the document.
    explicit JsonMistakes(std::string source) : source_(std::move(source)) {}

    void Note(const std::string& pointer, const std::string& reason);
    [[nodiscard]] std::size_t Count() const { return lines_.size(); }
    [[nodiscard]] const std::string& Source() const { return source_; }

    // Throws std::runtime_error with a line for each mistake: "<source>: <JSON pointer>: <reason>".
    void ThrowIfAny() const;

private:
    std::string source_;
    std::vector<std::string> lines_;
};

// A reader is any function from a place to what stands there. One that cannot make sense of the place refuses it, and
// whoever let it read goes on behind it.
class JsonPlace {
public:
    // Both must outlive the places.
    static JsonPlace Root(const nlohmann::ordered_json& document, JsonMistakes& mistakes)
    {
        return {document, mistakes, ""};
    }

    // Notes a mistake; the second form gives the value up.
    void Note(const std::string& reason) const;
    [[noreturn]] void Refuse(const std::string& reason) const;

    // Each refuses a value of another kind: "must be <kind>".
    [[nodiscard]] std::string Text(const std::string& kind = "a text") const;
    [[nodiscard]] bool Flag() const;
    [[nodiscard]] std::int64_t Number(std::int64_t least, std::int64_t most) const;
    [[nodiscard]] std::vector<JsonPlace> Elements() const;
    // The names and values of an object's members, in their order.
    [[nodiscard]] std::vector<std::pair<std::string, JsonPlace>> Members() const;

    [[nodiscard]] bool IsText() const;
    [[nodiscard]] bool IsNumber() const;
    [[nodiscard]] bool IsObject() const;

    // Notes the members of an object that have other names.
    void AllowOnly(std::initializer_list<const char*> names) const;

    // Runs a reader; whether it met no mistake.
    template <class Reader>
    bool Try(Reader read) const
    {
        const std::size_t before = mistakes_->Count();
        try {
            read(*this);
        } catch (const Refused&) {
            // Noted already.
        }
        return mistakes_->Count() == before;
    }

    // Reads a member of an object into `target`, which stays as it is if the member is refused or absent. Whether there
    // was no mistake.
    template <class Target, class Reader>
    bool Required(const char* name, Target& target, Reader read) const
    {
        if (const auto member = Find(name))
            return member->Try([&](const JsonPlace& place) { target = read(place); });
        Note(std::string("lacks the member \"") + name + "\"");
        return false;
    }
    template <class Target, class Reader>
    bool Optional(const char* name, Target& target, Reader read) const
    {
        const auto member = Find(name);
        return !member || member->Try([&](const JsonPlace& place) { target = read(place); });
    }

private:
    class Refused : public std::exception {};

    JsonPlace(const nlohmann::ordered_json& value, JsonMistakes& mistakes, std::string pointer)
        : value_(&value), mistakes_(&mistakes), pointer_(std::move(pointer))
    {
    }
    [[nodiscard]] JsonPlace Member(const std::string& name, const nlohmann::ordered_json& value) const;
    [[nodiscard]] std::optional<JsonPlace> Find(const std::string& name) const;
    void RequireObject() const;

    const nlohmann::ordered_json* value_;
    JsonMistakes* mistakes_;
    std::string pointer_;
};

}  // namespace machine
