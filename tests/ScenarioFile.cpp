#include "ScenarioFile.h"

#include "machine/Utf16.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

namespace {

std::string Narrowed(const nlohmann::json& text)
{
    std::string bytes;
    for (const wchar_t unit : machine::Utf8ToUtf16(text.get<std::string>())) {
        if (unit > 0xFF)
            throw std::runtime_error("no byte: a character of " + text.get<std::string>());
        bytes += static_cast<char>(unit);
    }
    return bytes;
}

std::string Ended(const nlohmann::json& lines)
{
    if (lines.is_string())
        return Narrowed(lines) + "\r\n";
    std::string text;
    if (!lines.is_null())
        for (const auto& line : lines)
            text += Narrowed(line) + "\r\n";
    return text;
}

}  // namespace

ScenarioFile::ScenarioFile(const std::string& bytes)
{
    for (std::size_t start = 0; start < bytes.size();) {
        const std::size_t end = bytes.find('\n', start) + 1;
        lines_[static_cast<int>(lines_.size()) + 1] = bytes.substr(start, end - start);
        start = end;
    }
}

void ScenarioFile::Apply(const nlohmann::json& difference, const nlohmann::json& edits)
{
    if (difference.is_object()) {
        ApplyLines(difference, edits);
        return;
    }
    exists_ = !difference.is_null();
    bytes_.reset();
    lines_.clear();
    if (difference.is_string())
        bytes_ = Narrowed(difference);
    else if (exists_)
        for (const auto& line : difference)
            lines_[static_cast<int>(lines_.size()) + 1] = Ended(line);
}

std::optional<std::string> ScenarioFile::Bytes() const
{
    if (!exists_ || bytes_)
        return exists_ ? bytes_ : std::nullopt;
    std::string bytes;
    for (const auto& [number, line] : lines_)
        bytes += line;
    return bytes;
}

void ScenarioFile::ApplyLines(const nlohmann::json& difference, const nlohmann::json& edits)
{
    for (const auto& name : difference.value("with", nlohmann::json::array()))
        ApplyLines(edits.at(name.get<std::string>()), edits);
    for (const auto& [number, line] : difference.items())
        if (number != "with")
            lines_.at(std::stoi(number)) = Ended(line);
}
