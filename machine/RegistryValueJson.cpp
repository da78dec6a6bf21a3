#include "machine/RegistryValueJson.h"

#include "machine/JsonValues.h"
#include "machine/Utf16.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>

namespace machine {

namespace {

using nlohmann::ordered_json;

struct TypeRow {
    const char* name;
    DWORD value;
    unsigned numberSize = 0;  // in bytes; 0: no number type
    bool isText = false;
};
constexpr TypeRow TypeTable[] = {
    {"REG_NONE", REG_NONE},
    {"REG_SZ", REG_SZ, 0, true},
    {"REG_EXPAND_SZ", REG_EXPAND_SZ, 0, true},
    {"REG_BINARY", REG_BINARY},
    {"REG_DWORD", REG_DWORD, 4},
    {"REG_DWORD_BIG_ENDIAN", REG_DWORD_BIG_ENDIAN, 4},
    {"REG_LINK", REG_LINK, 0, true},
    {"REG_MULTI_SZ", REG_MULTI_SZ, 0, true},
    {"REG_QWORD", REG_QWORD, 8},
};
constexpr unsigned MostTerminators = 1000;

// A type that has no name reads as bytes.
TypeRow RowOf(DWORD type)
{
    const auto* const found = std::find_if(std::begin(TypeTable), std::end(TypeTable),
                                           [type](const TypeRow& row) { return row.value == type; });
    return found == std::end(TypeTable) ? TypeRow{"", type} : *found;
}

DWORD ReadType(const JsonPlace& place) { return place.IsNumber() ? ReadUnsigned(place) : OneOf(TypeTable)(place); }

ordered_json WriteType(DWORD type)
{
    const ordered_json name = WriteName(TypeTable, type);
    return name.is_null() ? ordered_json(type) : name;
}

Bytes NumberData(std::uint64_t number, const TypeRow& type)
{
    Bytes data;
    for (unsigned index = 0; index < type.numberSize; ++index)
        data.push_back(static_cast<std::uint8_t>((number >> (8 * index)) & 0xFF));
    if (type.value == REG_DWORD_BIG_ENDIAN)
        std::reverse(data.begin(), data.end());
    return data;
}

Bytes ReadNumber(const JsonPlace& place, const TypeRow& type)
{
    if (type.numberSize == 0)
        place.Refuse("cannot be the data of a value of type " + WriteType(type.value).dump());
    const std::int64_t most =
        type.numberSize == 4 ? std::numeric_limits<std::uint32_t>::max() : std::numeric_limits<std::int64_t>::max();
    return NumberData(static_cast<std::uint64_t>(place.Number(0, most)), type);
}

// The text, its terminators and what stands behind them.
struct TextForm {
    std::wstring text;
    unsigned terminators = 1;
    Bytes extraBytes;

    [[nodiscard]] Bytes Data() const
    {
        Bytes data = TextData(text, terminators);
        data.insert(data.end(), extraBytes.begin(), extraBytes.end());
        return data;
    }
};

RegistryValue ReadTypedValue(const JsonPlace& place)
{
    place.AllowOnly({"type", "text", "terminators", "extraBytes", "number", "bytes"});
    RegistryValue value;
    const bool typed = place.Required("type", value.type, ReadType);
    std::optional<std::wstring> text;
    std::optional<unsigned> terminators;
    std::optional<Bytes> extraBytes, number, bytes;
    bool read = place.Optional("text", text, ReadWideText);
    read &= place.Optional("terminators", terminators, [](const JsonPlace& count) {
        return static_cast<unsigned>(count.Number(0, MostTerminators));
    });
    read &= place.Optional("extraBytes", extraBytes, ReadBytes);
    read &= place.Optional("bytes", bytes, ReadBytes);
    read &= place.Optional("number", number, [&](const JsonPlace& digits) {
        return typed ? ReadNumber(digits, RowOf(value.type)) : Bytes();
    });
    if (!read)
        return value;
    if ((text ? 1 : 0) + (number ? 1 : 0) + (bytes ? 1 : 0) != 1)
        place.Refuse(R"(must have exactly one of "text", "number" and "bytes")");
    if (!text && (terminators || extraBytes))
        place.Refuse(R"(may have "terminators" and "extraBytes" with "text" only)");
    value.data = text     ? TextForm{*text, terminators.value_or(1), extraBytes.value_or(Bytes())}.Data()
                 : number ? *number
                          : *bytes;
    return value;
}

RegistryValue ReadRegistryValue(const JsonPlace& place)
{
    if (place.IsText())
        return {{}, REG_SZ, TextData(ReadWideText(place))};
    if (place.IsNumber())
        return {{}, REG_DWORD, ReadNumber(place, RowOf(REG_DWORD))};
    if (!place.IsObject())
        place.Refuse(
            "must be a text (REG_SZ), a whole number from 0 to 4294967295 (REG_DWORD) or an object with \"type\"");
    return ReadTypedValue(place);
}

// A text ends where Windows sees its end; a list of texts, at its last terminators.
std::optional<TextForm> FindTextForm(const RegistryValue& value)
{
    std::wstring units;
    for (std::size_t index = 0; index + 1 < value.data.size(); index += 2)
        units += static_cast<wchar_t>(value.data[index] | (value.data[index + 1] << 8));
    TextForm form;
    const std::size_t end = value.type == REG_MULTI_SZ ? units.find_last_not_of(L'\0') + 1 : units.find(L'\0');
    form.text = units.substr(0, end);
    const std::size_t behind = std::min(units.find_first_not_of(L'\0', form.text.size()), units.size());
    form.terminators = static_cast<unsigned>(behind - form.text.size());
    form.extraBytes.assign(value.data.begin() + static_cast<std::ptrdiff_t>(2 * behind), value.data.end());
    if (!RowOf(value.type).isText || form.terminators > MostTerminators || !IsUtf16(form.text))
        return std::nullopt;
    return form;
}

std::optional<std::uint64_t> FindNumber(const RegistryValue& value)
{
    const TypeRow type = RowOf(value.type);
    std::uint64_t number = 0;
    if (type.numberSize == 0 || value.data.size() != type.numberSize)
        return std::nullopt;
    for (std::size_t index = 0; index < value.data.size(); ++index)
        number |= static_cast<std::uint64_t>(value.data[index])
                  << (8 * (type.value == REG_DWORD_BIG_ENDIAN ? value.data.size() - 1 - index : index));
    return number > std::numeric_limits<std::int64_t>::max() ? std::nullopt : std::optional(number);
}

ordered_json WriteRegistryValue(const RegistryValue& value)
{
    ordered_json written;
    written["type"] = WriteType(value.type);
    if (const auto form = FindTextForm(value)) {
        const std::string text = WriteWideText(form->text);
        if (value.type == REG_SZ && form->terminators == 1 && form->extraBytes.empty())
            return text;
        written["text"] = text;
        if (form->terminators != 1)
            written["terminators"] = form->terminators;
        if (!form->extraBytes.empty())
            written["extraBytes"] = WriteBytes(form->extraBytes);
    } else if (const auto number = FindNumber(value)) {
        if (value.type == REG_DWORD)
            return *number;
        written["number"] = *number;
    } else {
        written["bytes"] = WriteBytes(value.data);
    }
    return written;
}

}  // namespace

std::string RegistryTypeName(DWORD type)
{
    const std::string name = RowOf(type).name;
    return name.empty() ? std::to_string(type) : name;
}

std::vector<RegistryValue> ReadRegistryValues(const JsonPlace& place)
{
    std::vector<RegistryValue> values;
    std::set<std::wstring, RegistryNameOrder> seen;
    for (const auto& [name, member] : place.Members()) {
        const std::wstring wideName = Utf8ToUtf16(name);
        if (wideName.find(L'\0') != std::wstring::npos)
            member.Note("must have a name without NUL");
        if (!seen.insert(wideName).second)
            member.Note("has the name of another value but for letter case, which the registry does not tell apart");
        member.Try([&](const JsonPlace& readable) {
            values.push_back(ReadRegistryValue(readable));
            values.back().name = wideName;
        });
    }
    return values;
}

ordered_json WriteRegistryValues(const std::vector<RegistryValue>& values)
{
    ordered_json written = ordered_json::object();
    for (const RegistryValue& value : values)
        written[WriteWideText(value.name)] = WriteRegistryValue(value);
    return written;
}

}  // namespace machine
