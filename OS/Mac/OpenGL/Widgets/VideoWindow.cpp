#include "OS/Mac/OpenGL/Widgets/VideoWindow.h"

#include "OS/Mac/OpenGL/Widgets/FrameScheduler.h"
#include "OS/Mac/OpenGL/Widgets/VideoSurface.h"

#include <OS/Windowing/iRootWindow.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

Tq::Ptr<iVideoWindow> VideoWindow::makeInside(QWidget& root, const XY<int>& position,
                                              const XY<int>& size)
{
    VideoSurface* surface = VideoSurface::makeInside(root, position, size);
    return surface ? new VideoWindow(*surface) : nullptr;
}

Tq::Ptr<iVideoWindow> VideoWindow::makeFullscreen(QWidget* root)
{
    VideoSurface* surface = VideoSurface::makeFullscreen(root);
    return surface ? new VideoWindow(*surface) : nullptr;
}

void VideoWindow::shutdown()
{
    VideoSurface::closeAll();
    FrameScheduler::instance().shutdown();
}

VideoWindow::VideoWindow(VideoSurface& surface) : surface_(&surface), frames_(surface.frames()) {}

VideoWindow::~VideoWindow()
{
    frames_->close();
    const auto destroy = [surface = surface_] {
        surface->close();
        delete surface;
    };
    QCoreApplication* app = QCoreApplication::instance();
    if (!app)
        return; // the toolkit's widgets went with it, or must stay
    if (app->thread() == QThread::currentThread())
        destroy();
    else
        QMetaObject::invokeMethod(app, destroy, Qt::QueuedConnection);
}

// -- Frames

Tq::Ptr<iVideoWindowBackBuffer> VideoWindow::getBackBuffer(const ImageDescriptionEx* finalImage)
{
    return frames_->makeBackBuffer(finalImage);
}

bool VideoWindow::setFrameRate(unsigned int numerator, unsigned int denominator)
{
    return frames_->setRate(numerator, denominator);
}

unsigned int VideoWindow::getQueuedFrames() const
{
    return frames_->getQueued();
}

unsigned int VideoWindow::waitForRoom(unsigned int timeoutMs) const
{
    return frames_->waitForRoom(timeoutMs);
}

iVideoWindow::Statistics VideoWindow::getStatistics() const
{
    return frames_->getStatistics();
}

void VideoWindow::resetStatistics()
{
    frames_->resetStatistics();
}

XY<int> VideoWindow::getSize() const
{
    return frames_->getMeasures().size;
}

double VideoWindow::getPixelRatio() const
{
    return frames_->getMeasures().ratio;
}

bool VideoWindow::isClosed() const
{
    return frames_->isClosed();
}

// -- The window

XY<int> VideoWindow::getPosition() const
{
    return surface_->getPosition();
}

void VideoWindow::setGeometry(const XY<int>& position, const XY<int>& size)
{
    surface_->setGeometry(position, size);
}

bool VideoWindow::isVisible() const
{
    return surface_->isVisible();
}

void VideoWindow::show()
{
    surface_->show();
}

void VideoWindow::hide()
{
    surface_->hide();
}

bool VideoWindow::setRootWindow(const Tq::Ptr<iRootWindow>& root)
{
    // A root window's identifier is its widget.
    return surface_->setRoot(root ? static_cast<QWidget*>(root->getID()) : nullptr);
}

bool VideoWindow::isFullscreen() const
{
    return surface_->isFullscreen();
}

bool VideoWindow::setMonitor(const XY<int>& desktopPosition)
{
    return surface_->setMonitor(desktopPosition);
}

void VideoWindow::close()
{
    surface_->close();
}
