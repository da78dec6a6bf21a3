// Stand-in until the room of this name is there: takes local ids in hexadecimal to today's decimal form.
#pragma once
#include "../../../simulation/MachineJson.h"

#include <nlohmann/json.hpp>

#include <string>

namespace machine {
inline void ToDecimal(nlohmann::json& value, bool local)
{
    if (value.is_string() && local)
        value = std::stoul(value.get<std::string>(), nullptr, 16);
    else if (value.is_array())
        for (auto& element : value)
            ToDecimal(element, local);
    else if (value.is_object())
        for (auto& [name, member] : value.items()) {
            if (name == "object") {
                const std::string text = member;
                const std::size_t slash = text.rfind('/');
                if (slash != std::string::npos)
                    member = text.substr(0, slash + 1) + std::to_string(std::stoul(text.substr(slash + 1), nullptr, 16));
            } else {
                ToDecimal(member, name == "id" ? member.is_string() && member.get<std::string>().size() == 8 &&
                                                     member.get<std::string>().find_first_not_of("0123456789abcdef") ==
                                                         std::string::npos
                                               : name == "incoming" || name == "outgoing" || name == "part" ||
                                                     name == "signalPaths" || name == "node");
            }
        }
}
inline simulation::MachineDescription ParseMachine(const std::string& text, const std::string& source)
{
    auto json = nlohmann::json::parse(text);
    ToDecimal(json, false);
    return simulation::ParseMachine(json.dump(), source);
}
}  // namespace machine
