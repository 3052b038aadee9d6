#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// A read-only view of a classic resource file: a 16-byte header, the resources' data, and a map of
/// types, references and names (Inside Macintosh: More Macintosh Toolbox, "Resource Manager",
/// resource-file format; all numbers big-endian).
///
/// Every offset is checked against the file's size; a file that does not hold together finds
/// nothing. The bytes must outlive the view.
class ResourceMap
{
public:
    using Bytes = std::span<const std::uint8_t>;
    using FourCC = std::uint32_t;

    explicit ResourceMap(Bytes file);

    /// Whether the header and the map lie inside the file.
    bool valid() const { return !map_.empty(); }
    /// How many resources of a type the map lists; 0 when there are none.
    unsigned int count(FourCC type) const;
    /// The data of one resource, or nothing.
    std::optional<Bytes> find(FourCC type, std::int16_t id) const;

private:
    struct References
    {
        std::size_t offset; // of the first one, in the map
        unsigned int count;
    };

    std::optional<References> references(FourCC type) const;

    Bytes data_;
    Bytes map_;
};
