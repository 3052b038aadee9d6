#pragma once

#include "OS/Mac/OpenGL/Contexts/QtPointers.h"
#include "OS/Mac/OpenGL/Widgets/VideoFrames.h"

#include <OS/Core/Ptr.h>
#include <OS/Primitives/Rectangle.h>
#include <OS/Primitives/XY.h>

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <vector>

/// The part of a video window that belongs to the thread of the event loop: its widget, and where
/// that is. Everything here is for that thread, and not with the GL lock held.
class VideoSurface
{
public:
    /// @param root the root window's widget
    /// @return null where GL is not to be had
    static VideoSurface* makeInside(QWidget& root, const XY<int>& position, const XY<int>& size);
    /// @param root gets the input, and chooses the monitor; may be null
    /// @return null where there is no monitor or GL is not to be had
    static VideoSurface* makeFullscreen(QWidget* root);
    /// close() goes before.
    virtual ~VideoSurface();
    VideoSurface(const VideoSurface&) = delete;
    VideoSurface& operator=(const VideoSurface&) = delete;

    /// Takes the widget off the screen; the frames are closed. A second call does nothing.
    void close();
    static void closeAll();

    const Tq::Ptr<VideoFrames>& frames() const { return frames_; }
    XY<int> getPosition() const;
    bool isVisible() const;
    void show();
    void hide();
    virtual bool isFullscreen() const = 0;
    virtual void setGeometry(const XY<int>& position, const XY<int>& size) = 0;
    virtual bool setRoot(QWidget* root) = 0;
    virtual bool setMonitor(const XY<int>& desktopPosition) = 0;

    /// The first of some rectangles that holds a position; -1 when none does.
    static int findMonitor(const std::vector<Tq::Rectangle<int>>& monitors,
                           const XY<int>& position);

protected:
    explicit VideoSurface(Tq::Ptr<QtGLWidget> widget);
    /// Null when closed.
    QtGLWidget* widget() const { return widget_.get(); }
    /// Closes when an object goes, in place of the one before.
    void closeWith(QObject* owner);

private:
    virtual void showWidget() = 0;
    /// What to do with the widget of a closed surface. @param ownerGone it goes with its parent
    virtual void release(Tq::Ptr<QtGLWidget> widget, bool ownerGone) = 0;
    void close(bool ownerGone);
    static std::vector<VideoSurface*>& all();

    Tq::Ptr<QtGLWidget> widget_;
    Tq::Ptr<VideoFrames> frames_;
    QMetaObject::Connection ownerGone_;
};
