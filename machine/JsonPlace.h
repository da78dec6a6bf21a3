// A value of a JSON document together with where it stands, so that what is wrong with it can be said with its place.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace machine {

class JsonPlace {
public:
    // `source` names the document in failures.
    static JsonPlace Root(const nlohmann::json& document, const std::string& source) { return {document, source, ""}; }

    // Throws std::runtime_error: "<source>: <JSON pointer>: <reason>".
    [[noreturn]] void Refuse(const std::string& reason) const;

    // Each refuses a value of another type.
    [[nodiscard]] std::string Text() const;
    [[nodiscard]] bool Flag() const;
    [[nodiscard]] std::int64_t Number(std::int64_t least, std::int64_t most) const;
    [[nodiscard]] std::vector<JsonPlace> Elements() const;
    // The names and values of an object's members, by name.
    [[nodiscard]] std::vector<std::pair<std::string, JsonPlace>> Members() const;

    [[nodiscard]] bool IsText() const;
    [[nodiscard]] bool IsNumber() const;

    // Of an object.
    [[nodiscard]] JsonPlace Required(const std::string& name) const;
    [[nodiscard]] std::optional<JsonPlace> Optional(const std::string& name) const;
    void AllowOnly(std::initializer_list<const char*> names) const;

private:
    JsonPlace(const nlohmann::json& value, std::string source, std::string pointer)
        : value_(&value), source_(std::move(source)), pointer_(std::move(pointer))
    {
    }
    void RequireObject() const;

    const nlohmann::json* value_;
    std::string source_;
    std::string pointer_;
};

// Reads a document whose objects have no member twice. Throws std::runtime_error with the source, and the line and
// column or the name of the member.
nlohmann::json ParseJson(const std::string& text, const std::string& source);

}  // namespace machine
