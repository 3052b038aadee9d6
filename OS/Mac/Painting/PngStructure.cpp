#include "OS/Mac/Painting/PngStructure.h"

#include "OS/Mac/Painting/PictureLimits.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr unsigned char kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::uint64_t kHead = 8; // length and type
constexpr std::uint64_t kSum = 4;

bool readAt(std::FILE* file, std::uint64_t at, unsigned char (&bytes)[8])
{
    return std::fseek(file, static_cast<long>(at), SEEK_SET) == 0 &&
           std::fread(bytes, sizeof bytes, 1, file) == 1;
}

bool chunksReachTheEnd(std::FILE* file)
{
    const std::uint64_t size = PictureLimits::fileBytes(fileno(file));
    unsigned char bytes[8];
    if (!readAt(file, 0, bytes) || std::memcmp(bytes, kSignature, sizeof bytes) != 0)
        return false;
    for (std::uint64_t at = sizeof bytes; at + kHead + kSum <= size;) {
        if (!readAt(file, at, bytes))
            return false;
        const std::uint64_t length = std::uint64_t(bytes[0]) << 24 | std::uint64_t(bytes[1]) << 16 |
                                     std::uint64_t(bytes[2]) << 8 | bytes[3];
        at += kHead + length + kSum;
        if (std::memcmp(bytes + 4, "IEND", 4) == 0)
            return at <= size;
    }
    return false;
}

} // namespace

bool isWholePng(std::FILE* file)
{
    const bool whole = chunksReachTheEnd(file);
    std::rewind(file);
    return whole;
}
