#pragma once

#include <chrono>
#include <cstddef>

namespace OSInternal {

class MidiRunLoop;

/// Takes packets: the bytes of what a source sent at one time, in the source's own division.
class MidiPacketSink
{
public:
    virtual ~MidiPacketSink() = default;
    /// @param data valid during the call @param length 0 to 65535
    virtual void handlePacket(const unsigned char* data, std::size_t length) = 0;
};

/// A connection from a source. Packets that come while nothing is delivered are kept, up to the
/// back end's limit; what does not fit is lost.
///
/// Used by its device's thread alone. Its destructor ends the connection and returns soon, whatever
/// became of the source or of the server.
class MidiInputPort
{
public:
    virtual ~MidiInputPort() = default;

    /// Readable when packets came.
    virtual int descriptor() const = 0;
    /// Hands what there is to the sink, on the calling thread, as long as the loop is to run.
    virtual void deliver(const MidiRunLoop& loop) = 0;
};

/// A connection to a destination. Any thread.
///
/// Its destructor lets go of the destination once it has taken what was sent, or soon in any case.
class MidiOutputPort
{
public:
    enum Kind
    {
        eWhole, ///< a packet of whole messages
        ePiece  ///< a piece of a long message, at most SysExSender::kPieceSize bytes
    };

    virtual ~MidiOutputPort() = default;

    /// Hands bytes over without blocking.
    /// @return 0; -EAGAIN when nothing was taken, to be tried again; or another negative status
    virtual int send(const unsigned char* bytes, std::size_t length, Kind kind) = 0;

    /// When the destination has had time for the pieces sent so far. Asked by the thread that sends
    /// them.
    virtual std::chrono::steady_clock::time_point nextPieceAt() const = 0;
};

} // namespace OSInternal
