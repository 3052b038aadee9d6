#include "OS/Host/Desktop/Opener.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <spawn.h>
#include <unistd.h>

namespace {

constexpr const char* kProgram = "xdg-open";

void detachStreams(posix_spawn_file_actions_t& actions)
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

void detachSignals(posix_spawnattr_t& attributes)
{
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    std::memset(&signals, 0xFF, sizeof signals); // sigfillset leaves two out
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
}

} // namespace

namespace Opener {

pid_t open(const char* target)
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    detachStreams(actions);
    detachSignals(attributes);

    // The system's type, not its intention: neither is written to.
    char* const arguments[] = {const_cast<char*>(kProgram), const_cast<char*>(target), nullptr};
    pid_t id = 0;
    if (posix_spawnp(&id, kProgram, &actions, &attributes, arguments, environ) != 0)
        id = 0;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return id;
}

} // namespace Opener
