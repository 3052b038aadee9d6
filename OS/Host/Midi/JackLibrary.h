#pragma once

#include <jack/jack.h>
#include <jack/midiport.h>

namespace OSInternal {

/// The functions of JACK's client library, loaded at the first use: a machine without JACK runs the
/// same program, and one whose JACK is another server's gets that one's library.
struct JackLibrary
{
    decltype(&::jack_client_open) client_open;
    decltype(&::jack_client_close) client_close;
    decltype(&::jack_activate) activate;
    decltype(&::jack_set_process_callback) set_process_callback;
    decltype(&::jack_on_info_shutdown) on_info_shutdown;
    decltype(&::jack_set_error_function) set_error_function;
    decltype(&::jack_set_info_function) set_info_function;
    decltype(&::jack_port_register) port_register;
    decltype(&::jack_port_unregister) port_unregister;
    decltype(&::jack_port_name) port_name;
    decltype(&::jack_port_by_name) port_by_name;
    decltype(&::jack_port_is_mine) port_is_mine;
    decltype(&::jack_port_flags) port_flags;
    decltype(&::jack_port_connected_to) port_connected_to;
    decltype(&::jack_connect) connect;
    decltype(&::jack_get_ports) get_ports;
    decltype(&::jack_free) free;
    decltype(&::jack_port_get_buffer) port_get_buffer;
    decltype(&::jack_midi_get_event_count) midi_get_event_count;
    decltype(&::jack_midi_event_get) midi_event_get;
    decltype(&::jack_midi_clear_buffer) midi_clear_buffer;
    decltype(&::jack_midi_event_reserve) midi_event_reserve;

    /// @return null where there is none; it stays loaded
    static const JackLibrary* get();
};

} // namespace OSInternal
