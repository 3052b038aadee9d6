#pragma once

#include "OS/Mac/OpenGL/Widgets/VideoFrames.h"

#include <OS/Windowing/iVideoWindow.h>

class QWidget;
class VideoSurface;

/// iVideoWindow: its frames, for every thread, and its surface, for the event loop's.
class VideoWindow final : public iVideoWindow
{
public:
    /// In a root window. On the thread of the event loop, as the other two.
    /// @param root the root window's widget @return null where GL is not to be had
    static Tq::Ptr<iVideoWindow> makeInside(QWidget& root, const XY<int>& position,
                                            const XY<int>& size);
    /// @param root the root window's widget, which gets the input; may be null
    /// @return null where there is no monitor or GL is not to be had
    static Tq::Ptr<iVideoWindow> makeFullscreen(QWidget* root);
    /// Closes all windows and ends their pacing. Without the GL lock.
    static void shutdown();

    /// On another thread than the event loop's the surface is left to that one.
    ~VideoWindow() override;
    VideoWindow(const VideoWindow&) = delete;
    VideoWindow& operator=(const VideoWindow&) = delete;

    Tq::Ptr<iVideoWindowBackBuffer> getBackBuffer(const ImageDescriptionEx* finalImage) override;
    bool setFrameRate(unsigned int numerator, unsigned int denominator) override;
    unsigned int getQueuedFrames() const override;
    unsigned int waitForRoom(unsigned int timeoutMs) const override;
    Statistics getStatistics() const override;
    void resetStatistics() override;
    XY<int> getSize() const override;
    double getPixelRatio() const override;
    XY<int> getPosition() const override;
    void setGeometry(const XY<int>& position, const XY<int>& size) override;
    bool isVisible() const override;
    void show() override;
    void hide() override;
    bool setRootWindow(const Tq::Ptr<iRootWindow>& root) override;
    bool isFullscreen() const override;
    bool setMonitor(const XY<int>& desktopPosition) override;
    void close() override;
    bool isClosed() const override;

private:
    explicit VideoWindow(VideoSurface& surface);

    VideoSurface* const surface_; // owned
    const Tq::Ptr<VideoFrames> frames_;
};
