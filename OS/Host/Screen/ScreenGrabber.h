#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

namespace Host {

/// A picture of the screen: rows of 32-bit words, 0x00RRGGBB; what the upper byte holds is not
/// defined.
struct ScreenPicture
{
    std::shared_ptr<const void> owner; ///< keeps the pixels; null when there is no picture
    const std::uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0; ///< bytes
};

/// A part of the screen, in its own pixels.
struct ScreenArea
{
    int x, y, width, height;
};

/// Takes pictures of the display that the environment names, through memory shared with its server.
///
/// The connection, one of its own, and the memory of the last picture are kept for the next one.
/// Any thread; a lock of its own guards it, and pictures may be let go at any time.
class ScreenGrabber
{
public:
    ScreenGrabber();
    ~ScreenGrabber();
    ScreenGrabber(const ScreenGrabber&) = delete;
    ScreenGrabber& operator=(const ScreenGrabber&) = delete;

    /// @param area null for the whole screen; what lies outside is left out
    /// @return none where there is no display, or its server does not share memory or has no
    /// 32-bit words of that kind: a server on another computer, an old one
    ScreenPicture grab(const ScreenArea* area);
    /// Gives back the memory of the last picture, unless that picture still lives.
    void clear();

private:
    class Connection;
    class Segment;

    bool connect();
    bool provide(std::size_t bytes);

    std::mutex mutex_;
    std::shared_ptr<Connection> connection_;
    std::shared_ptr<Segment> segment_;
};

} // namespace Host
