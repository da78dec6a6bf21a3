// Values that several parts of a machine's JSON form hold: how each is read, and how it is written.
#pragma once

#include "machine/JsonPlace.h"
#include "machine/TopologyDescription.h"

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <vector>

namespace machine {

// --- Readers that are made of others -----------------------------------------------------------------------------

// Of a list: what `read` gives for each element that it does not refuse.
template <class Reader>
auto ListOf(Reader read)
{
    return [read](const JsonPlace& place) {
        std::vector<decltype(read(place))> values;
        for (const JsonPlace& element : place.Elements())
            element.Try([&](const JsonPlace& readable) { values.push_back(read(readable)); });
        return values;
    };
}

// Of a value that is not in `seen` yet, and is from then on; refuses others for `reason`.
template <class Reader, class Seen>
auto Unique(Reader read, Seen& seen, const char* reason)
{
    return [read, &seen, reason](const JsonPlace& place) {
        auto value = read(place);
        if (!seen.insert(value).second)
            place.Refuse(reason);
        return value;
    };
}

// --- Values that have names --------------------------------------------------------------------------------------

template <class Value>
struct NamedValue {
    const char* name;
    Value value;
};

template <class Table>
auto OneOf(const Table& table)
{
    return [&table](const JsonPlace& place) {
        std::string list;
        for (const auto& row : table)
            list += (list.empty() ? "\"" : ", \"") + std::string(row.name) + "\"";
        const std::string name = place.Text("one of " + list);
        for (const auto& row : table)
            if (name == row.name)
                return row.value;
        place.Refuse("must be one of " + list);
    };
}

// Null, which no reader takes, for a value without a name.
template <class Table, class Value>
nlohmann::ordered_json WriteName(const Table& table, const Value& value)
{
    for (const auto& row : table)
        if (row.value == value)
            return row.name;
    return nullptr;
}

// --- Single values -----------------------------------------------------------------------------------------------

std::wstring ReadWideText(const JsonPlace& place);

// Throws std::runtime_error for a text that is no UTF-16: JSON cannot hold it.
std::string WriteWideText(const std::wstring& text);

// Names as the registry compares them: without regard to case.
struct RegistryNameOrder {
    bool operator()(const std::wstring& left, const std::wstring& right) const;
};

// Either case is read; written in lower case.
GUID ReadGuid(const JsonPlace& place);
std::string WriteGuid(const GUID& guid);

// Pairs of hexadecimal digits separated by blanks.
Bytes ReadBytes(const JsonPlace& place);
std::string WriteBytes(const Bytes& bytes);

std::uint32_t ReadUnsigned(const JsonPlace& place);

// The local id of a part (or the node id made of it): eight hexadecimal digits.
UINT ReadLocalId(const JsonPlace& place);

}  // namespace machine
