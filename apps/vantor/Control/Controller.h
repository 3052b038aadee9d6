#pragma once

#include "Control/ControlCommand.h"
#include "Model/Text.h"

#include <functional>
#include <memory>
#include <vector>

namespace Vantor {

/// A device that drives the playhead.
struct ControllerPlace
{
    enum class Kind
    {
        eNone,
        eMidi,  ///< a MIDI input, by name
        eSerial ///< a jog wheel at a serial port, by path
    };
    Kind kind = Kind::eNone;
    Text name;

    friend bool operator==(const ControllerPlace&, const ControllerPlace&) = default;
};

/// Those that are attached now: MIDI inputs, then serial ports.
std::vector<ControllerPlace> findControllers();
/// "midi:NAME" or "serial:PATH"; empty for none. The other way round nothing is none.
Text textOf(const ControllerPlace& place);
ControllerPlace controllerOf(const Text& text);

/// An open controller; letting it go closes it.
class Controller
{
public:
    /// Called for each message that arrives, on a thread of the device's. @param command null: it
    /// means nothing here
    using Deliver = std::function<void(const ControlCommand* command)>;

    /// @return null where the device cannot be opened
    static std::unique_ptr<Controller> open(const ControllerPlace& place, Deliver deliver);
    virtual ~Controller() = default;
};

} // namespace Vantor
