// The endpoints for people and for programs.
#include "host/review/Culprit.h"
#include "host/review/Endpoints.h"
#include "host/review/ShownText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

// A cell holds one entry per line of text.
using Cell = std::vector<std::string>;
constexpr std::size_t ColumnCount = 6;
using Cells = std::array<Cell, ColumnCount>;

Cell Entries(const std::vector<FoundModule>& modules)
{
    Cell cell;
    for (const FoundModule& module : modules)
        cell.push_back(Harmless((module.pin.empty() ? "" : "pin " + module.pin + " ") + module.type + " " +
                                ModuleName(module) + (module.makersName.empty() ? "" : " *")));
    return cell;
}

Cells CellsOf(const EndpointView& view)
{
    Cells cells{Cell{view.flow},       Cell{view.state},      Cell{EndpointTitle(view)},
                Entries(view.effects), Entries(view.wrapped), Entries(view.firmware)};
    if (!view.why.empty())
        cells.back().push_back(view.why);
    for (Cell& cell : cells)
        if (cell.empty())
            cell.emplace_back(view.effectsKnown ? "-" : "?");
    return cells;
}

std::string Lines(const Cells& cells, const std::array<std::size_t, ColumnCount>& widths)
{
    std::string text;
    const auto height = std::max_element(cells.begin(), cells.end(), [](const Cell& left, const Cell& right) {
                            return left.size() < right.size();
                        })->size();
    for (std::size_t row = 0; row < height; ++row) {
        std::string line;
        for (std::size_t column = 0; column < ColumnCount; ++column) {
            const std::string entry = row < cells[column].size() ? cells[column][row] : "";
            line += entry + std::string(column + 1 < ColumnCount ? widths[column] - Width(entry) + 2 : 0, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::uint32_t PinNumber(const std::string& digits)
{
    std::uint32_t number = 0;
    (void)std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

Json ModulesJson(const std::vector<FoundModule>& modules)
{
    Json list = Json::array();
    for (const FoundModule& module : modules) {
        Json entry = {{"slot", Utf8(module.type)}, {"guid", Utf8(module.guid)}};
        if (!module.pin.empty())
            entry["pin"] = PinNumber(module.pin);
        entry["maker"] = module.makersName.empty() ? Json(nullptr) : Json(module.makersName);
        list.push_back(std::move(entry));
    }
    return list;
}

}  // namespace

std::string EndpointTable(const std::vector<EndpointView>& endpoints)
{
    std::vector<Cells> rows{{Cell{"FLOW"}, {"STATE"}, {"NAME"}, {"EFFECTS"}, {"WRAPPED"}, {"FIRMWARE MODULES"}}};
    for (const EndpointView& view : endpoints)
        rows.push_back(CellsOf(view));
    std::array<std::size_t, ColumnCount> widths{};
    for (const Cells& row : rows)
        for (std::size_t column = 0; column < ColumnCount; ++column)
            for (const std::string& entry : row[column])
                widths[column] = std::max(widths[column], Width(entry));
    std::string text;
    for (const Cells& row : rows)
        text += Lines(row, widths);
    return text + "(* by Orvex)\n";
}

nlohmann::ordered_json EndpointsJson(const std::vector<EndpointView>& endpoints)
{
    Json list = Json::array();
    for (const EndpointView& view : endpoints)
        list.push_back({{"flow", view.flow},
                        {"state", view.state},
                        {"name", view.name},
                        {"guid", view.guid},
                        {"deviceId", view.deviceId},
                        {"effects", view.effectsKnown ? ModulesJson(view.effects) : Json(nullptr)},
                        {"wrapped", view.effectsKnown ? ModulesJson(view.wrapped) : Json(nullptr)},
                        {"firmware", view.firmwareKnown ? ModulesJson(view.firmware) : Json(nullptr)},
                        {"why", view.why.empty() ? Json(nullptr) : Json(view.why)}});
    return list;
}

}  // namespace host
