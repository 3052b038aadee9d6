#include "OS/Mac/Core/ResourceMap.h"

namespace {

using Bytes = ResourceMap::Bytes;

constexpr std::size_t kHeaderSize = 16;
constexpr std::size_t kTypeListOffsetAt =
    24; // in the map, behind a copy of the header and three fields
constexpr std::size_t kMapHeaderSize = 30;
constexpr std::size_t kTypeSize = 8; // type, count - 1, offset of its references from the type list
constexpr std::size_t kReferenceSize =
    12; // id, name, attributes and a 24-bit offset into the data, handle

// `length` bytes at `offset`, or nothing when they do not lie inside.
std::optional<Bytes> part(Bytes bytes, std::size_t offset, std::size_t length)
{
    if (offset > bytes.size() || length > bytes.size() - offset)
        return std::nullopt;
    return bytes.subspan(offset, length);
}

// A big-endian number; a number outside reads as nothing.
std::optional<std::uint32_t> number(Bytes bytes, std::size_t offset, std::size_t length)
{
    const auto found = part(bytes, offset, length);
    if (!found)
        return std::nullopt;
    std::uint32_t value = 0;
    for (const std::uint8_t byte : *found)
        value = (value << 8) | byte;
    return value;
}

// The counts of the map hold one less than they mean; 0xFFFF is none.
unsigned int oneMore(std::uint32_t stored)
{
    return (stored + 1) & 0xFFFF;
}

} // namespace

ResourceMap::ResourceMap(Bytes file)
{
    if (file.size() < kHeaderSize)
        return;
    const auto data = part(file, *number(file, 0, 4), *number(file, 8, 4));
    const auto map = part(file, *number(file, 4, 4), *number(file, 12, 4));
    if (data && map && map->size() >= kMapHeaderSize) {
        data_ = *data;
        map_ = *map;
    }
}

std::optional<ResourceMap::References> ResourceMap::references(FourCC type) const
{
    if (!valid())
        return std::nullopt;
    const std::size_t list = *number(map_, kTypeListOffsetAt, 2);
    const auto stored = number(map_, list, 2);
    const unsigned int types = stored ? oneMore(*stored) : 0;
    for (unsigned int i = 0; i < types; ++i) {
        const std::size_t entry = list + 2 + i * kTypeSize;
        const auto code = number(map_, entry, 4);
        const auto count = number(map_, entry + 4, 2);
        const auto offset = number(map_, entry + 6, 2);
        if (!code || !count || !offset)
            return std::nullopt;
        if (*code == type)
            return References{list + *offset, oneMore(*count)};
    }
    return std::nullopt;
}

unsigned int ResourceMap::count(FourCC type) const
{
    const auto found = references(type);
    return found ? found->count : 0;
}

std::optional<ResourceMap::Bytes> ResourceMap::find(FourCC type, std::int16_t id) const
{
    const auto list = references(type);
    for (unsigned int i = 0; list && i < list->count; ++i) {
        const std::size_t entry = list->offset + i * kReferenceSize;
        const auto entryId = number(map_, entry, 2);
        const auto offset = number(map_, entry + 5, 3);
        if (!entryId || !offset)
            return std::nullopt;
        if (static_cast<std::int16_t>(*entryId) != id)
            continue;
        const auto length = number(data_, *offset, 4);
        return length ? part(data_, *offset + 4, *length) : std::nullopt;
    }
    return std::nullopt;
}
