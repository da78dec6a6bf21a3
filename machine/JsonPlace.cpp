#include "machine/JsonPlace.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace machine {

using nlohmann::json;

void JsonPlace::Refuse(const std::string& reason) const
{
    throw std::runtime_error(source_ + ": " + (pointer_.empty() ? "/" : pointer_) + ": " + reason);
}

std::string JsonPlace::Text() const
{
    if (!value_->is_string())
        Refuse("must be a text");
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
    for (const json& element : *value_)
        elements.push_back({element, source_, pointer_ + "/" + std::to_string(elements.size())});
    return elements;
}

std::vector<std::pair<std::string, JsonPlace>> JsonPlace::Members() const
{
    RequireObject();
    std::vector<std::pair<std::string, JsonPlace>> members;
    for (const auto& member : value_->items())
        members.emplace_back(member.key(), Required(member.key()));
    return members;
}

bool JsonPlace::IsText() const { return value_->is_string(); }

bool JsonPlace::IsNumber() const { return value_->is_number_integer(); }

JsonPlace JsonPlace::Required(const std::string& name) const
{
    if (auto member = Optional(name))
        return *std::move(member);
    Refuse("lacks the member \"" + name + "\"");
}

std::optional<JsonPlace> JsonPlace::Optional(const std::string& name) const
{
    RequireObject();
    const auto found = value_->find(name);
    if (found == value_->end())
        return std::nullopt;
    return JsonPlace(*found, source_, pointer_ + (json::json_pointer() / name).to_string());
}

void JsonPlace::AllowOnly(std::initializer_list<const char*> names) const
{
    RequireObject();
    for (const auto& member : value_->items())
        if (std::find(names.begin(), names.end(), member.key()) == names.end())
            Refuse("has the unknown member \"" + member.key() + "\"");
}

void JsonPlace::RequireObject() const
{
    if (!value_->is_object())
        Refuse("must be an object");
}

json ParseJson(const std::string& text, const std::string& source)
{
    std::vector<std::set<std::string>> openObjects;
    const auto watch = [&](int, json::parse_event_t event, json& parsed) {
        if (event == json::parse_event_t::object_start)
            openObjects.emplace_back();
        else if (event == json::parse_event_t::object_end)
            openObjects.pop_back();
        else if (event == json::parse_event_t::key && !openObjects.back().insert(parsed.get<std::string>()).second)
            throw std::runtime_error(source + ": the member \"" + parsed.get<std::string>() +
                                     "\" stands twice in one object");
        return true;
    };
    try {
        return json::parse(text, watch);
    } catch (const json::exception& error) {
        throw std::runtime_error(source + ": " + error.what());
    }
}

}  // namespace machine
