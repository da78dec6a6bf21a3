// A file as the scenarios write it: a base file and what differs from it, by the numbers of the base's lines.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <map>
#include <optional>
#include <string>
#include <vector>

class ScenarioFile {
public:
    explicit ScenarioFile(const std::string& bytes);

    // null: there is no such file; a text: its bytes as they stand; a list: its lines; an object: the lines that differ
    // by their numbers, null for one that is left out, a list for several in its place, and in "with" the names of
    // edits of `edits`, each such an object. Each character is a byte; each line ends with CR LF.
    void Apply(const nlohmann::json& difference, const nlohmann::json& edits);

    [[nodiscard]] std::optional<std::string> Bytes() const;

private:
    void ApplyLines(const nlohmann::json& difference, const nlohmann::json& edits);

    std::optional<std::string> bytes_;  // once it is no longer made of lines
    bool exists_ = true;
    std::map<int, std::string> lines_;  // by number, with their ends
};
