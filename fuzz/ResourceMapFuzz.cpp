// Any bytes as a resource file: nothing is read outside of them.

#include "OS/Mac/Core/ResourceMap.h"

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::uint8_t> file(
        data, data + size); // a block of its own: any step beyond it is seen
    const ResourceMap map{ResourceMap::Bytes(file)};
    volatile std::uint8_t sink = 0;
    for (const ResourceMap::FourCC type : {0x5069504Cu, 0x54455854u, 0u})
        for (std::int32_t id = -2; id <= 2; ++id)
            if (const auto found = map.find(type, static_cast<std::int16_t>(id)))
                for (const std::uint8_t byte : *found)
                    sink = byte;
    (void)sink;
    map.count(0x5069504C);
    return 0;
}
