#include "OS/Host/Midi/JackLibrary.h"

#include <dlfcn.h>

namespace OSInternal {

namespace {

template <class Function>
bool find(void* library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool load(JackLibrary& jack)
{
    void* library = dlopen("libjack.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return false;
#define FIND(name) find(library, "jack_" #name, jack.name)
    return FIND(client_open) && FIND(client_close) && FIND(activate) &&
           FIND(set_process_callback) && FIND(on_info_shutdown) && FIND(set_error_function) &&
           FIND(set_info_function) && FIND(port_register) && FIND(port_unregister) &&
           FIND(port_name) && FIND(port_by_name) && FIND(port_is_mine) && FIND(port_flags) &&
           FIND(port_connected_to) && FIND(connect) && FIND(get_ports) && FIND(free) &&
           FIND(port_get_buffer) && FIND(midi_get_event_count) && FIND(midi_event_get) &&
           FIND(midi_clear_buffer) && FIND(midi_event_reserve);
#undef FIND
}

} // namespace

const JackLibrary* JackLibrary::get()
{
    static JackLibrary library;
    static const bool isLoaded = load(library);
    return isLoaded ? &library : nullptr;
}

} // namespace OSInternal
