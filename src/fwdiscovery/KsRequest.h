// Kernel-streaming property requests, as bytes: every integer is little-endian, and a GUID stands in its memory layout,
// so that no field depends on how a compiler packs a structure.
#pragma once

#include <windows.h>

#include <devicetopology.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qov {

struct WireField {
    std::size_t offset;
    std::size_t size;

    [[nodiscard]] constexpr std::size_t End() const { return offset + size; }
};

inline void WriteNumber(std::uint8_t* bytes, WireField field, std::uint32_t value)
{
    for (std::size_t index = 0; index < field.size; ++index)
        bytes[field.offset + index] = static_cast<std::uint8_t>((value >> (8 * index)) & 0xFF);
}

inline std::uint32_t ReadNumber(const std::uint8_t* bytes, WireField field)
{
    std::uint32_t value = 0;
    for (std::size_t index = field.size; index-- > 0;)
        value = (value << 8) | bytes[field.offset + index];
    return value;
}

inline void WriteGuid(std::uint8_t* bytes, WireField field, const GUID& guid)
{
    WriteNumber(bytes, {field.offset, 4}, guid.Data1);
    WriteNumber(bytes, {field.offset + 4, 2}, guid.Data2);
    WriteNumber(bytes, {field.offset + 6, 2}, guid.Data3);
    std::memcpy(bytes + field.offset + 8, guid.Data4, sizeof(guid.Data4));
}

inline GUID ReadGuid(const std::uint8_t* bytes, WireField field)
{
    GUID guid{};
    guid.Data1 = ReadNumber(bytes, {field.offset, 4});
    guid.Data2 = static_cast<std::uint16_t>(ReadNumber(bytes, {field.offset + 4, 2}));
    guid.Data3 = static_cast<std::uint16_t>(ReadNumber(bytes, {field.offset + 6, 2}));
    std::memcpy(guid.Data4, bytes + field.offset + 8, sizeof(guid.Data4));
    return guid;
}

// The platform's KSPROPERTY_TYPE_GET and KSPROPERTY_TYPE_TOPOLOGY.
constexpr std::uint32_t KsFlagGet = 0x1;
constexpr std::uint32_t KsFlagTopology = 0x10000000;

// A request to one pin or node of a filter, with `ExtraSize` bytes behind it. The first 32 bytes are the platform's
// KSP_PIN and KSP_NODE, which are laid out alike.
template <std::size_t ExtraSize>
class KsRequest {
public:
    KsRequest(const GUID& propertySet, std::uint32_t propertyId, std::uint32_t flags, std::uint32_t target)
    {
        WriteGuid(bytes_.data(), PropertySet, propertySet);
        WriteNumber(bytes_.data(), PropertyId, propertyId);
        WriteNumber(bytes_.data(), Flags, flags);
        WriteNumber(bytes_.data(), Target, target);
    }

    void SetExtra(const GUID& guid)
    {
        static_assert(ExtraSize == sizeof(GUID));
        WriteGuid(bytes_.data(), {BaseSize, ExtraSize}, guid);
    }

    [[nodiscard]] PKSPROPERTY Property() { return reinterpret_cast<PKSPROPERTY>(bytes_.data()); }
    [[nodiscard]] static constexpr ULONG Size() { return static_cast<ULONG>(BaseSize + ExtraSize); }

private:
    static constexpr WireField PropertySet{0, 16};
    static constexpr WireField PropertyId{16, 4};
    static constexpr WireField Flags{20, 4};
    static constexpr WireField Target{24, 4};  // the pin or node id
    static constexpr WireField Reserved{28, 4};
    static constexpr std::size_t BaseSize = 32;
    static_assert(PropertySet.End() == PropertyId.offset && PropertyId.End() == Flags.offset &&
                  Flags.End() == Target.offset && Target.End() == Reserved.offset && Reserved.End() == BaseSize);

    alignas(KSPROPERTY) std::array<std::uint8_t, BaseSize + ExtraSize> bytes_{};
};

using KsNodeRequest = KsRequest<0>;
using KsPinRequest = KsRequest<0>;

}  // namespace qov
