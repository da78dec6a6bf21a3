#include "machine/RegistryValueJson.h"

#include "machine/JsonValues.h"
#include "machine/Utf16.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>

namespace machine {

namespace {

struct TypeRow {
    const char* name;
    DWORD type;
    unsigned numberSize;  // in bytes; 0: no number type
    bool bigEndian;
};
constexpr TypeRow DwordType{"REG_DWORD", REG_DWORD, 4, false};
constexpr TypeRow TypeTable[] = {
    DwordType,
    {"REG_NONE", REG_NONE, 0, false},
    {"REG_SZ", REG_SZ, 0, false},
    {"REG_EXPAND_SZ", REG_EXPAND_SZ, 0, false},
    {"REG_BINARY", REG_BINARY, 0, false},
    {"REG_DWORD_BIG_ENDIAN", REG_DWORD_BIG_ENDIAN, 4, true},
    {"REG_LINK", REG_LINK, 0, false},
    {"REG_MULTI_SZ", REG_MULTI_SZ, 0, false},
    {"REG_QWORD", REG_QWORD, 8, false},
};

const TypeRow& ReadType(const JsonPlace& place)
{
    const std::string name = place.Text();
    const auto found =
        std::find_if(std::begin(TypeTable), std::end(TypeTable), [&](const TypeRow& row) { return row.name == name; });
    if (found == std::end(TypeTable))
        place.Refuse("is no registry value type");
    return *found;
}

Bytes NumberData(std::uint64_t number, const TypeRow& type)
{
    Bytes data;
    for (unsigned index = 0; index < type.numberSize; ++index)
        data.push_back(static_cast<std::uint8_t>((number >> (8 * index)) & 0xFF));
    if (type.bigEndian)
        std::reverse(data.begin(), data.end());
    return data;
}

Bytes ReadNumber(const JsonPlace& place, const TypeRow& type)
{
    if (type.numberSize == 0)
        place.Refuse(std::string("cannot be the data of a value of type ") + type.name);
    const std::int64_t most =
        type.numberSize == 4 ? std::numeric_limits<std::uint32_t>::max() : std::numeric_limits<std::int64_t>::max();
    return NumberData(static_cast<std::uint64_t>(place.Number(0, most)), type);
}

RegistryValue ReadRegistryValue(const JsonPlace& place)
{
    RegistryValue value;
    if (place.IsText()) {
        value.type = REG_SZ;
        value.data = TextData(Utf8ToUtf16(place.Text()));
        return value;
    }
    if (place.IsNumber()) {
        value.type = REG_DWORD;
        value.data = ReadNumber(place, DwordType);
        return value;
    }
    place.AllowOnly({"type", "text", "terminators", "extraBytes", "number", "bytes"});
    const TypeRow& type = ReadType(place.Required("type"));
    value.type = type.type;
    const auto text = place.Optional("text");
    const auto number = place.Optional("number");
    const auto bytes = place.Optional("bytes");
    if ((text ? 1 : 0) + (number ? 1 : 0) + (bytes ? 1 : 0) != 1)
        place.Refuse(R"(must have exactly one of "text", "number" and "bytes")");
    const auto terminators = place.Optional("terminators");
    const auto extraBytes = place.Optional("extraBytes");
    if (!text && (terminators || extraBytes))
        place.Refuse(R"(may have "terminators" and "extraBytes" with "text" only)");
    if (text) {
        value.data =
            TextData(Utf8ToUtf16(text->Text()), terminators ? static_cast<unsigned>(terminators->Number(0, 1000)) : 1);
        if (extraBytes) {
            const Bytes extra = ReadBytes(*extraBytes);
            value.data.insert(value.data.end(), extra.begin(), extra.end());
        }
    } else {
        value.data = number ? ReadNumber(*number, type) : ReadBytes(*bytes);
    }
    return value;
}

}  // namespace

std::vector<RegistryValue> ReadRegistryValues(const JsonPlace& place)
{
    std::vector<RegistryValue> values;
    std::set<std::wstring> seen;
    for (const auto& [name, member] : place.Members()) {
        RegistryValue value = ReadRegistryValue(member);
        value.name = Utf8ToUtf16(name);
        if (value.name.empty() || value.name.find(L'\0') != std::wstring::npos)
            member.Refuse("must have a name without NUL");
        if (!seen.insert(FoldCase(value.name)).second)
            member.Refuse("has the name of another value but for letter case, which the registry does not tell apart");
        values.push_back(std::move(value));
    }
    return values;
}

}  // namespace machine
