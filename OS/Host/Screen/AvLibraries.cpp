#include "OS/Host/Screen/AvLibraries.h"

#include <dlfcn.h>

namespace Host {

namespace {

#define HOST_LIBRARY(name, version) "lib" name ".so." AV_STRINGIFY(version)

template <class Function>
bool find(void* library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

} // namespace

// Those whose records the headers describe, and no others.
bool AvLibraries::load()
{
    bool found = true;
    void* library = nullptr;
    const auto open = [&](const char* name) {
        library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
        found = found && library;
        return found;
    };
#define HOST_AV_FIND(name) found = found && find(library, #name, name);
    if (open(HOST_LIBRARY("avutil", LIBAVUTIL_VERSION_MAJOR))) {
        HOST_AVUTIL_CALLS(HOST_AV_FIND)
    }
    if (found && open(HOST_LIBRARY("avcodec", LIBAVCODEC_VERSION_MAJOR))) {
        HOST_AVCODEC_CALLS(HOST_AV_FIND)
    }
    if (found && open(HOST_LIBRARY("avformat", LIBAVFORMAT_VERSION_MAJOR))) {
        HOST_AVFORMAT_CALLS(HOST_AV_FIND)
    }
    if (found && open(HOST_LIBRARY("avdevice", LIBAVDEVICE_VERSION_MAJOR))) {
        HOST_AVDEVICE_CALLS(HOST_AV_FIND)
    }
    if (found && open(HOST_LIBRARY("swscale", LIBSWSCALE_VERSION_MAJOR))) {
        HOST_SWSCALE_CALLS(HOST_AV_FIND)
    }
#undef HOST_AV_FIND
    return found;
}

const AvLibraries* AvLibraries::get(const char*& reason)
{
    static AvLibraries libraries;
    static const bool loaded = [] {
        if (!libraries.load())
            return false;
        libraries.avdevice_register_all();
        return true;
    }();
    if (!loaded)
        reason = "libavdevice " AV_STRINGIFY(LIBAVDEVICE_VERSION_MAJOR) " is not installed";
    return loaded ? &libraries : nullptr;
}

} // namespace Host
