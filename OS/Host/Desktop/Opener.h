#pragma once

#include <sys/types.h>

/// The desktop's way of opening things with the user's programs: "xdg-open", looked for along PATH.
///
/// It runs without a shell, in a session of its own, with its standard streams on /dev/null, and
/// gets no descriptor of this process. Any thread.
namespace Opener {

/// Starts it; does not wait for it.
/// @param target an absolute path or an address: nothing that begins with "-"
/// @return its number, for the caller to collect; 0 when there is no opener
pid_t open(const char* target);

} // namespace Opener
