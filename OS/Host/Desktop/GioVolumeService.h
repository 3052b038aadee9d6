#pragma once

#include "OS/Host/Desktop/VolumeService.h"

namespace OSInternal {

/// The volume service that GIO speaks to over the session bus (its daemon is gvfsd). No state.
///
/// Never starts a session bus, and asks the bus whether the service can be had before GIO is let
/// near it, since GIO waits without limit for a bus that is silent. Two effects of the first call
/// that finds a service stay for the life of the process: GIO's shared connection to the bus, made
/// so that the end of the bus does not end the process, and what the service's client library does
/// when it is loaded (it has SIGPIPE ignored).
///
/// The service answers a guest or the login it was given once; asked again, or asked a question
/// only a person can answer, it gives up.
class GioVolumeService final : public VolumeService
{
public:
    VolumeAnswer mount(const std::string& uri, const VolumeLogin& login,
                       unsigned int timeoutMs) override;
    VolumeAnswer unmount(const std::string& uri, unsigned int timeoutMs) override;
};

} // namespace OSInternal
