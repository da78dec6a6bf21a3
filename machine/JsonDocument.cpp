#include "machine/JsonDocument.h"

#include <nlohmann/json.hpp>

#include <set>
#include <stdexcept>
#include <vector>

namespace machine {

namespace {

using nlohmann::ordered_json;

// Follows a parser through the document: which objects and lists are open, and where in each of them it is.
class Path {
public:
    void Open(bool list) { levels_.push_back({list, 0, {}, {}}); }
    void Close()
    {
        levels_.pop_back();
        Next();
    }
    void Next()
    {
        if (!levels_.empty() && levels_.back().list)
            ++levels_.back().index;
    }
    // Whether the object has no member of that name so far.
    bool Enter(const std::string& name)
    {
        levels_.back().name = name;
        return levels_.back().names.insert(name).second;
    }
    [[nodiscard]] std::string Pointer() const
    {
        ordered_json::json_pointer pointer;
        for (const Level& level : levels_)
            pointer /= level.list ? std::to_string(level.index) : level.name;
        return pointer.to_string();
    }

private:
    struct Level {
        bool list;
        std::size_t index;
        std::string name;
        std::set<std::string> names;
    };
    std::vector<Level> levels_;
};

constexpr std::size_t LineLength = 110;

std::string OnOneLine(const ordered_json& value)
{
    if (value.empty() || !value.is_structured())
        return value.dump();
    std::string inside;
    for (const auto& item : value.items()) {
        inside += inside.empty() ? "" : ", ";
        inside += (value.is_object() ? ordered_json(item.key()).dump() + ": " : "") + OnOneLine(item.value());
    }
    return value.is_object() ? "{ " + inside + " }" : "[" + inside + "]";
}

// `column` is where the text will begin.
std::string Layout(const ordered_json& value, std::size_t indent, std::size_t column, bool root = false)
{
    std::string line = OnOneLine(value);
    if (!value.is_structured() || value.empty() || (!root && column + line.size() + 1 <= LineLength))
        return line;
    std::string text;
    for (const auto& item : value.items()) {
        std::string start(indent + 2, ' ');
        if (value.is_object())
            start += ordered_json(item.key()).dump() + ": ";
        text += (text.empty() ? "\n" : ",\n") + start + Layout(item.value(), indent + 2, start.size());
    }
    text += "\n" + std::string(indent, ' ');
    return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

}  // namespace

ordered_json ParseJson(const std::string& text, JsonMistakes& mistakes)
{
    using Event = ordered_json::parse_event_t;
    Path path;
    const auto watch = [&](int, Event event, ordered_json& parsed) {
        if (event == Event::object_start || event == Event::array_start)
            path.Open(event == Event::array_start);
        else if (event == Event::object_end || event == Event::array_end)
            path.Close();
        else if (event == Event::value)
            path.Next();
        else if (!path.Enter(parsed.get<std::string>()))
            mistakes.Note(path.Pointer(), "stands twice in its object");
        return true;
    };
    try {
        return ordered_json::parse(text, watch);
    } catch (const ordered_json::exception& error) {
        throw std::runtime_error(mistakes.Source() + ": " + error.what());
    }
}

std::string FormatJson(const ordered_json& document) { return Layout(document, 0, 0, true) + "\n"; }

}  // namespace machine
