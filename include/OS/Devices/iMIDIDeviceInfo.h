#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/LightweightString.h>

/// What is known of a MIDI device beside its number.
struct MIDIDeviceInfo
{
    LightweightString<wchar_t> name_;         ///< as a user knows it
    LightweightString<wchar_t> manufacturer_; ///< empty when not known
    bool isVirtual_ = false;                  ///< another program's port rather than hardware
};

/// Describes MIDI devices by name. The object behind OS()->midi() has this interface too:
///
///     auto* info = dynamic_cast<iMIDIDeviceInfo*>(OS()->midi());
///
/// Any thread. Like the counts, each call connects first where that is still to be done, and asks
/// afresh: a name goes with a number only until devices come or go.
class OS_API iMIDIDeviceInfo
{
public:
    /// @return false when there is no such device now; info is left alone then
    virtual bool getInputDevInfo(unsigned int index, MIDIDeviceInfo& info) = 0;
    virtual bool getOutputDevInfo(unsigned int index, MIDIDeviceInfo& info) = 0;

    /// The services in use: "ALSA", "JACK" or "none".
    virtual LightweightString<char> getServices() = 0;

protected:
    ~iMIDIDeviceInfo() = default;
};
