#include "support/Allocators.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <unistd.h>
#include <utility>

namespace Bench {

std::vector<PeerAllocator> loadPeers()
{
    std::vector<PeerAllocator> peers;
    const std::pair<const char*, const char*> libraries[] = {
        {"glibc", "libc.so.6"},
        {"jemalloc", "libjemalloc.so.2"},
        {"tcmalloc", "libtcmalloc_minimal.so.4"},
        {"mimalloc", "libmimalloc.so.2"}};
    for (const auto& [name, library] : libraries) {
        void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
        PeerAllocator peer;
        peer.name_ = name;
        if (handle) {
            peer.malloc_ = reinterpret_cast<void* (*)(std::size_t)>(dlsym(handle, "malloc"));
            peer.free_ = reinterpret_cast<void (*)(void*)>(dlsym(handle, "free"));
        }
        if (peer.malloc_ && peer.free_)
            peers.push_back(peer);
        else
            std::printf("%s is left out: %s\n", name, dlerror());
    }
    return peers;
}

void restartWith(char** arguments, const char* variable, const char* value)
{
    const char* now = std::getenv(variable);
    if (now && std::strcmp(now, value) == 0)
        return;
    setenv(variable, value, 1);
    std::fflush(stdout);
    execv("/proc/self/exe", arguments);
    std::perror("exec");
    std::exit(1);
}

} // namespace Bench
