#pragma once

#include "OS/Host/Midi/MidiSystem.h"

#include <memory>
#include <mutex>

#include <alsa/asoundlib.h>

namespace OSInternal {

/// A client of the sequencer that does not block. One thread at a time; where several use it, with
/// its lock held.
class AlsaClient
{
public:
    /// @return null, with nothing printed, and the status
    static std::unique_ptr<AlsaClient> open(const char* name, int& status);
    ~AlsaClient();
    AlsaClient(const AlsaClient&) = delete;
    AlsaClient& operator=(const AlsaClient&) = delete;

    snd_seq_t* handle() const { return handle_; }
    std::mutex& lock() { return lock_; }

    /// Ports of other clients that have both capabilities and may be used by others; the system's
    /// own and all of this library's left out.
    std::vector<MidiEndpoint> endpoints(unsigned int capabilities);

private:
    explicit AlsaClient(snd_seq_t* handle);

    snd_seq_t* const handle_;
    std::mutex lock_;
};

/// The address in an endpoint. @return false when it is none
bool parseAlsaAddress(const std::string& text, snd_seq_addr_t& address);

/// The maker of a sound card where its bus tells, else nothing.
/// @param hostRoot goes before "/sys", for tests
std::string alsaCardManufacturer(int card, const std::string& hostRoot);

} // namespace OSInternal
