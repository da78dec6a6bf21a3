#include "ScenarioCases.h"

#include "ScenarioFile.h"
#include "support/Scratch.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

std::string Lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// What "${name}" stands for. A name in small letters, when it is not there itself, stands for the text in small
// letters.
class Names {
public:
    explicit Names(const json& table) : table_(table) {}

    [[nodiscard]] std::string Resolved(std::string text) const
    {
        for (std::size_t start = 0; (start = text.find("${", start)) != std::string::npos;) {
            const std::size_t end = text.find('}', start);
            text.replace(start, end + 1 - start, TextOf(text.substr(start + 2, end - start - 2)));
        }
        return text;
    }

    [[nodiscard]] json Resolved(const json& value) const
    {
        if (value.is_string())
            return Resolved(value.get<std::string>());
        if (!value.is_structured())
            return value;
        json resolved = value.is_array() ? json::array() : json::object();
        for (const auto& [name, member] : value.items()) {
            if (value.is_array())
                resolved.push_back(Resolved(member));
            else
                resolved[Resolved(name)] = Resolved(member);
        }
        return resolved;
    }

private:
    [[nodiscard]] std::string TextOf(const std::string& name) const
    {
        if (const auto exact = table_.find(name); exact != table_.end())
            return exact->get<std::string>();
        for (const auto& [other, text] : table_.items())
            if (Lowered(other) == name)
                return Lowered(text);
        throw std::runtime_error("no such name: " + name);
    }

    json table_;
};

// A message as a text, as a list of its lines, or as {"warning": text}.
std::string Message(const json& entry)
{
    if (entry.is_string())
        return entry;
    if (entry.is_object())
        return "[warning] " + Message(entry.at("warning"));
    std::string text;
    for (const auto& line : entry)
        text += (text.empty() && &line == &entry.front() ? "" : "\n") + line.get<std::string>();
    return text;
}

// A message each, or {"times": number, "log": messages}.
std::vector<std::string> Messages(const json& entries)
{
    std::vector<std::string> messages;
    for (const auto& entry : entries) {
        if (!entry.is_object() || !entry.contains("times")) {
            messages.push_back(Message(entry));
            continue;
        }
        const auto repeated = Messages(entry.at("log"));
        for (int times = entry.at("times"); times > 0; --times)
            messages.insert(messages.end(), repeated.begin(), repeated.end());
    }
    return messages;
}

// The messages with others instead; null for one that does not come.
std::vector<std::string> Instead(const std::vector<std::string>& messages, const json& instead)
{
    std::vector<std::string> result;
    for (const std::string& message : messages) {
        if (!instead.contains(message))
            result.push_back(message);
        else if (!instead.at(message).is_null())
            result.push_back(Message(instead.at(message)));
    }
    for (const auto& [message, replacement] : instead.items())
        if (std::find(messages.begin(), messages.end(), message) == messages.end())
            throw std::runtime_error("instead of a message that does not come: " + message);
    return result;
}

class Reader {
public:
    explicit Reader(const fs::path& folder) : folder_(folder), names_(json::parse(ReadBytes(folder / "names.json")))
    {
        const json shared = Parsed("outcomes.json");
        edits_ = shared.at("edits");
        outcomes_ = shared.at("outcomes");
    }

    void ReadGroup(const std::string& name, std::vector<ScenarioCase>& cases) const
    {
        const json group = Parsed(name + ".json");
        for (const auto& [caseName, content] : group.at("cases").items()) {
            try {
                cases.push_back(Worked(Inherited(group, content), group));
            } catch (const std::exception& failure) {
                throw std::runtime_error(name + ".json: " + caseName + ": " + failure.what());
            }
            cases.back().name = caseName;
            cases.back().suite += "/" + name;
        }
    }

private:
    [[nodiscard]] json Parsed(const std::string& name) const
    {
        try {
            return names_.Resolved(json::parse(ReadBytes(folder_ / name)));
        } catch (const std::exception& failure) {
            throw std::runtime_error(name + ": " + failure.what());
        }
    }

    // A case with what it takes over from the one that it is like: its machine is patched further, the rest is
    // replaced.
    static json Inherited(const json& group, const json& content)
    {
        if (!content.contains("like"))
            return content;
        json inherited = Inherited(group, group.at("cases").at(content.at("like").get<std::string>()));
        for (const auto& [name, member] : content.items()) {
            if (name == "machine" && inherited.contains(name) && member.is_array())
                inherited[name].insert(inherited[name].end(), member.begin(), member.end());
            else
                inherited[name] = member;
        }
        return inherited;
    }

    // The log of an outcome, from the first file on, with what it says instead of the one that it is derived from.
    [[nodiscard]] std::vector<std::string> OutcomeLog(const json& outcome) const
    {
        if (!outcome.contains("as"))
            return Messages(outcome.at("log"));
        return Instead(OutcomeLog(outcomes_.at(outcome.at("as").get<std::string>())), outcome.at("instead"));
    }

    // The base with what differs from it, as JSON Merge Patch or JSON Patch.
    [[nodiscard]] json Machine(const json& content, const std::string& base) const
    {
        json machine = Parsed(content.value("base", base));
        const json difference = content.value("machine", json::object());
        if (difference.is_array())
            return machine.patch(difference);
        machine.merge_patch(difference);
        return machine;
    }

    void WorkOutFiles(const json& content, const json& outcome, ScenarioCase& worked) const
    {
        const json none = json::object();
        for (std::size_t index = 0; index < ScenarioFiles.size(); ++index) {
            const std::string name = ScenarioFiles[index];
            const json edits = edits_.value(name, none);
            ScenarioFile file(ReadBytes(folder_ / "files" / (name + ".xml")));
            file.Apply(content.value("before", none).value(name, none), edits);
            worked.before[index] = file.Bytes();
            const json after = content.value("after", none).value(name, none);
            if (after.is_object())  // else it is the whole file
                file.Apply(outcome.value(name, none), edits);
            file.Apply(after, edits);
            worked.after[index] = file.Bytes();
        }
    }

    // The machine and the outcome of the group serve its cases that name none; what throws has no outcome.
    [[nodiscard]] ScenarioCase Worked(const json& content, const json& group) const
    {
        static const std::vector<std::string> known = {"about", "like",  "base",    "machine", "before", "throws",
                                                       "log",   "calls", "outcome", "instead", "after"};
        for (const auto& [name, member] : content.items())
            if (std::find(known.begin(), known.end(), name) == known.end())
                throw std::runtime_error("no such member: " + name);
        ScenarioCase worked;
        const json machine = Machine(content, group.at("machine"));
        worked.suite = Suite(machine);
        worked.machine = machine.dump();
        worked.about = content.at("about");
        worked.failure = content.value("throws", "(nothing thrown)");
        worked.calls = Messages(content.value("calls", json::array({"..."})));
        worked.log = Messages(content.value("log", json::array({"..."})));
        json outcome = json::object();
        if (!content.contains("throws")) {
            outcome = outcomes_.at(content.value("outcome", group.value("outcome", "")));
            const auto log = Instead(OutcomeLog(outcome), content.value("instead", json::object()));
            worked.log.insert(worked.log.end(), log.begin(), log.end());
        }
        WorkOutFiles(content, outcome, worked);
        return worked;
    }

    // A Windows function can be made to fail over the stand-in alone; the generation is that of the real system there.
    static std::string Suite(const json& machine)
    {
        for (const auto& fault : machine.value("faults", json::array()))
            if (fault.at("call").get<std::string>().find("::") == std::string::npos)
                return "StandIn";
        return machine.at("windowsVersion") == "6.2" ? "Windows8" : "Windows10";
    }

    fs::path folder_;
    Names names_;
    json edits_;
    json outcomes_;
};

}  // namespace

std::vector<ScenarioCase> ReadScenarioCases(const fs::path& folder)
{
    std::vector<ScenarioCase> cases;
    const Reader reader(folder);
    std::vector<std::string> groups;
    for (const auto& entry : fs::directory_iterator(folder))
        if (std::isupper(static_cast<unsigned char>(entry.path().filename().string().front())) != 0)
            groups.push_back(entry.path().stem().string());
    std::sort(groups.begin(), groups.end());
    for (const std::string& group : groups)
        reader.ReadGroup(group, cases);
    return cases;
}
