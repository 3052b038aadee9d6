#include "OS/Mac/OpenGL/Widgets/VideoSurface.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Widgets/InputForwarder.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidget.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPool.h"

#include <OS/Threads/CriticalSectionLock.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace {

/// A rectangle of a root window.
class ChildSurface final : public VideoSurface
{
public:
    ChildSurface(Tq::Ptr<QtGLWidget> widget, QWidget& root) : VideoSurface(std::move(widget))
    {
        closeWith(&root);
    }

    bool isFullscreen() const override { return false; }
    void setGeometry(const XY<int>& position, const XY<int>& size) override
    {
        if (!widget())
            return;
        widget()->setGeometry(position.x, position.y, std::max(size.x, 1), std::max(size.y, 1));
        widget()->noteMeasures(); // a hidden widget learns of it when it is shown
    }
    bool setRoot(QWidget* root) override
    {
        if (!widget() || !root)
            return false;
        moveInto(*widget(), *root, !widget()->isHidden());
        closeWith(root);
        return true;
    }
    bool setMonitor(const XY<int>&) override { return false; }

    /// Under the GL lock: nothing is drawn into a window that is on its way.
    static void moveInto(QtGLWidget& widget, QWidget& root, bool visible)
    {
        const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
        const QPoint position = widget.pos();
        widget.setParent(&root);
        widget.move(position);
        widget.setVisible(visible);
    }

private:
    void showWidget() override { widget()->show(); }
    void release(Tq::Ptr<QtGLWidget> widget, bool ownerGone) override
    {
        const QWindow* window = widget->windowHandle();
        if (!ownerGone && window && window->isExposed())
            QtGLWidgetPool::instance().insert(std::move(widget));
    }
};

/// A whole monitor, above everything else, that leaves keys and the focus to the root window.
class FullscreenSurface final : public VideoSurface
{
public:
    FullscreenSurface(Tq::Ptr<QtGLWidget> widget, QWidget* root)
        : VideoSurface(std::move(widget)), input_(root)
    {
        QtGLWidget& window = *this->widget();
        const Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint |
                                      Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus;
        // Of the window that there is: another one would lose the GL context's place.
        window.overrideWindowFlags(flags);
        window.windowHandle()->setFlags(flags);
        window.setAttribute(Qt::WA_ShowWithoutActivating);
        window.setMouseTracking(true);
        window.installEventFilter(&input_);
    }

    bool isFullscreen() const override { return true; }
    void setGeometry(const XY<int>&, const XY<int>&) override {}
    bool setRoot(QWidget*) override { return false; }
    bool setMonitor(const XY<int>& position) override
    {
        std::vector<Tq::Rectangle<int>> monitors;
        for (const QScreen* screen : QGuiApplication::screens()) {
            const QRect g = screen->geometry();
            monitors.push_back({g.left(), g.top(), g.left() + g.width(), g.top() + g.height()});
        }
        const int found = findMonitor(monitors, position);
        if (!widget() || found < 0)
            return false;
        moveTo(*QGuiApplication::screens()[found]);
        return true;
    }
    void moveTo(QScreen& screen)
    {
        if (screen_ == &screen)
            return;
        screen_ = &screen;
        // Window managers keep a full-screen window where it is: it comes anew.
        const bool visible = widget()->isVisible();
        widget()->hide();
        widget()->windowHandle()->setScreen(&screen);
        widget()->setGeometry(screen.geometry());
        widget()->noteMeasures();
        if (visible)
            showWidget();
    }

private:
    // As showFullScreen does, but for the focus. Under the GL lock: a window that is to stay on top
    // is made anew when it is first shown.
    void showWidget() override
    {
        const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
        widget()->setWindowState(widget()->windowState() | Qt::WindowFullScreen);
        widget()->setVisible(true);
    }
    void release(Tq::Ptr<QtGLWidget> widget, bool) override
    {
        // Its flags are its own: not for the pool.
        widget->hide();
    }

    InputForwarder input_;
    QPointer<QScreen> screen_;
};

} // namespace

VideoSurface* VideoSurface::makeInside(QWidget& root, const XY<int>& position, const XY<int>& size)
{
    const XY<int> atLeastOne(std::max(size.x, 1), std::max(size.y, 1));
    const Tq::Ptr<QtGLWidget> widget = QtGLWidgetPool::instance().get(&root, position, atLeastOne);
    if (!widget)
        return nullptr;
    if (widget->parentWidget() != &root)
        ChildSurface::moveInto(*widget, root, true);
    auto* surface = new ChildSurface(widget, root);
    widget->noteMeasures();
    widget->raise();
    widget->show();
    return surface;
}

VideoSurface* VideoSurface::makeFullscreen(QWidget* root)
{
    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised() || !OpenGLUtils::getSharedContext().getWidget() ||
        QGuiApplication::screens().empty())
        return nullptr;
    QScreen* screen = QGuiApplication::primaryScreen();
    if (root) {
        if (QScreen* under = QGuiApplication::screenAt(root->mapToGlobal(root->rect().center())))
            screen = under;
    }
    Tq::Ptr<QtGLWidget> widget(
        new QtGLWidget(nullptr, OpenGLUtils::getSharedContext().getWidget()));
    auto* surface = new FullscreenSurface(std::move(widget), root);
    surface->moveTo(*screen);
    surface->show();
    return surface;
}

VideoSurface::VideoSurface(Tq::Ptr<QtGLWidget> widget)
    : widget_(std::move(widget)), frames_(new VideoFrames(*widget_))
{
    all().push_back(this);
}

VideoSurface::~VideoSurface()
{
    auto& surfaces = all();
    surfaces.erase(std::remove(surfaces.begin(), surfaces.end(), this), surfaces.end());
}

// Never destroyed: windows may outlive the process's statics.
std::vector<VideoSurface*>& VideoSurface::all()
{
    static auto* const surfaces = new std::vector<VideoSurface*>;
    return *surfaces;
}

void VideoSurface::closeAll()
{
    for (VideoSurface* surface : std::vector<VideoSurface*>(all()))
        surface->close();
}

void VideoSurface::closeWith(QObject* owner)
{
    QObject::disconnect(ownerGone_);
    ownerGone_ = QObject::connect(owner, &QObject::destroyed, [this] { close(true); });
}

void VideoSurface::close()
{
    close(false);
}

void VideoSurface::close(bool ownerGone)
{
    frames_->close();
    QObject::disconnect(ownerGone_);
    if (!widget_)
        return;
    Tq::Ptr<QtGLWidget> widget;
    widget.swap(widget_);
    release(std::move(widget), ownerGone);
}

XY<int> VideoSurface::getPosition() const
{
    return widget_ ? XY<int>(widget_->x(), widget_->y()) : XY<int>();
}

bool VideoSurface::isVisible() const
{
    return widget_ && !widget_->isHidden();
}

void VideoSurface::show()
{
    if (!widget_)
        return;
    frames_->setAccepting(true);
    widget_->keepHidden(false);
    showWidget();
}

void VideoSurface::hide()
{
    if (!widget_)
        return;
    frames_->setAccepting(false);
    widget_->keepHidden(true);
    widget_->hide();
}

int VideoSurface::findMonitor(const std::vector<Tq::Rectangle<int>>& monitors,
                              const XY<int>& position)
{
    const auto found = std::find_if(monitors.begin(), monitors.end(),
                                    [&](const auto& m) { return m.contains(position); });
    return found == monitors.end() ? -1 : static_cast<int>(found - monitors.begin());
}
