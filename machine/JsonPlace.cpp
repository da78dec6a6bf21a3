#include "machine/JsonPlace.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

namespace machine {

using nlohmann::ordered_json;

void JsonMistakes::Note(const std::string& pointer, const std::string& reason)
{
    lines_.push_back(source_ + ": " + (pointer.empty() ? "/" : pointer) + ": " + reason);
}

void JsonMistakes::ThrowIfAny() const
{
    std::string message;
    for (const std::string& line : lines_)
        message += (message.empty() ? "" : "\n") + line;
    if (!lines_.empty())
        throw std::runtime_error(message);
}

void JsonPlace::Note(const std::string& reason) const { mistakes_->Note(pointer_, reason); }

void JsonPlace::Refuse(const std::string& reason) const
{
    Note(reason);
    throw Refused();
}

std::string JsonPlace::Text(const std::string& kind) const
{
    if (!value_->is_string())
        Refuse("must be " + kind);
    return value_->get<std::string>();
}

bool JsonPlace::Flag() const
{
    if (!value_->is_boolean())
        Refuse("must be true or false");
    return value_->get<bool>();
}

std::int64_t JsonPlace::Number(std::int64_t least, std::int64_t most) const
{
    const bool fits = value_->is_number_unsigned() ? value_->get<std::uint64_t>() <= static_cast<std::uint64_t>(most)
                                                   : value_->is_number_integer();
    if (!fits || value_->get<std::int64_t>() < least || value_->get<std::int64_t>() > most)
        Refuse("must be a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return value_->get<std::int64_t>();
}

std::vector<JsonPlace> JsonPlace::Elements() const
{
    if (!value_->is_array())
        Refuse("must be a list");
    std::vector<JsonPlace> elements;
    for (const ordered_json& element : *value_)
        elements.push_back({element, *mistakes_, pointer_ + "/" + std::to_string(elements.size())});
    return elements;
}

std::vector<std::pair<std::string, JsonPlace>> JsonPlace::Members() const
{
    RequireObject();
    std::vector<std::pair<std::string, JsonPlace>> members;
    for (const auto& member : value_->items())
        members.emplace_back(member.key(), Member(member.key(), member.value()));
    return members;
}

bool JsonPlace::IsText() const { return value_->is_string(); }

bool JsonPlace::IsNumber() const { return value_->is_number(); }

bool JsonPlace::IsObject() const { return value_->is_object(); }

void JsonPlace::AllowOnly(std::initializer_list<const char*> names) const
{
    RequireObject();
    for (const auto& member : value_->items())
        if (std::find(names.begin(), names.end(), member.key()) == names.end())
            Note("has the unknown member \"" + member.key() + "\"");
}

JsonPlace JsonPlace::Member(const std::string& name, const ordered_json& value) const
{
    return {value, *mistakes_, pointer_ + (ordered_json::json_pointer() / name).to_string()};
}

std::optional<JsonPlace> JsonPlace::Find(const std::string& name) const
{
    RequireObject();
    const auto found = value_->find(name);
    return found == value_->end() ? std::nullopt : std::optional(Member(name, *found));
}

void JsonPlace::RequireObject() const
{
    if (!value_->is_object())
        Refuse("must be an object");
}

}  // namespace machine
