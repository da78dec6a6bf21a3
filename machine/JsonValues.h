// Values of machine descriptions that several of their parts hold.
#pragma once

#include "machine/JsonPlace.h"
#include "machine/TopologyDescription.h"

#include <map>
#include <string>

namespace machine {

// The value that a name stands for.
template <class Value>
Value ReadNamed(const JsonPlace& place, const std::map<std::string, Value>& names)
{
    const auto found = names.find(place.Text());
    if (found != names.end())
        return found->second;
    std::string list;
    for (const auto& [name, value] : names)
        list += (list.empty() ? "\"" : ", \"") + name + "\"";
    place.Refuse("must be one of " + list);
}

std::wstring ReadWideText(const JsonPlace& place);

// A registry name as the registry compares it: without regard to case.
std::wstring FoldCase(const std::wstring& name);

GUID ReadGuid(const JsonPlace& place);

// Pairs of hexadecimal digits separated by blanks.
Bytes ReadBytes(const JsonPlace& place);

std::uint32_t ReadUnsigned(const JsonPlace& place);

// The local id of a part (or the node id made of it): eight hexadecimal digits.
UINT ReadLocalId(const JsonPlace& place);

}  // namespace machine
