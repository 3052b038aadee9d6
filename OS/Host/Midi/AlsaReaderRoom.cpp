#include "OS/Host/Midi/AlsaReaderRoom.h"

// The kernel's own header, which cannot stand beside the library's: that asks for no pool but its
// own client's.
#include <sound/asequencer.h>
#include <sys/ioctl.h>

namespace OSInternal {

bool hasAlsaReaderRoom(int descriptor, int reader, std::size_t dataBytes)
{
    snd_seq_client_pool pool{};
    pool.client = reader;
    if (ioctl(descriptor, SNDRV_SEQ_IOCTL_GET_CLIENT_POOL, &pool) != 0 || pool.input_pool <= 0)
        return true;
    constexpr std::size_t kCell = sizeof(snd_seq_event);
    const std::size_t cells = (dataBytes + kCell - 1) / kCell;
    // What can never be held is refused when it is sent.
    if (cells >= static_cast<std::size_t>(pool.input_pool))
        return true;
    return pool.input_free >= 0 && static_cast<std::size_t>(pool.input_free) > cells;
}

} // namespace OSInternal
