#include "OS/Host/Midi/MidiRunLoop.h"

#include "OS/Host/Midi/MidiPorts.h"

namespace OSInternal {

void MidiRunLoop::stop()
{
    if (running_.exchange(false))
        wake_.signal();
}

void MidiRunLoop::run(MidiInputPort* port)
{
    while (isRunning()) {
        // First, since packets may be waiting inside the port where no descriptor tells of them.
        if (port)
            port->deliver(*this);
        if (!isRunning())
            break;
        pollfd waited[] = {{wake_.get(), POLLIN, 0}, {port ? port->descriptor() : -1, POLLIN, 0}};
        if (poll(waited, 2, -1) > 0 && waited[0].revents)
            wake_.clear();
        // A source whose descriptor failed tells no more; only the stop is left to wait for.
        if (waited[1].revents & (POLLERR | POLLHUP | POLLNVAL))
            port = nullptr;
    }
}

} // namespace OSInternal
