#include "OS/Mac/Windowing/QtRootWindow.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/QtText.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtImage.h"
#include "OS/Mac/Painting/QtRegion.h"
#include "OS/Mac/Windowing/HostImagePixmap.h"
#include "OS/Mac/Windowing/Monitors.h"
#include "OS/Mac/Windowing/QtCustomEvent.h"
#include "OS/Mac/Windowing/QtRootWindowWidget.h"
#include "OS/Mac/Windowing/QtTimer.h"

#include <QCoreApplication>
#include <QIcon>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::uint32_t kMaximised = 2;

} // namespace

QtRootWindow::QtRootWindow()
{
    rootWindows().push_back(this);
}

QtRootWindow::~QtRootWindow()
{
    auto& windows = rootWindows();
    windows.erase(std::remove(windows.begin(), windows.end(), this), windows.end());
    spareWidgetInEvent();
}

// The handler may let the window go, or realise it anew, inside one of its events.
void QtRootWindow::spareWidgetInEvent()
{
    QtRootWindowWidget* mine = widget();
    if (!mine)
        return;
    mine->setEventHandler(nullptr);
    if (mine->isInEvent()) {
        mine->hide();
        destroyWidgetLater();
    }
}

// The list outlives the process's statics, as windows may.
std::vector<QtRootWindow*>& QtRootWindow::rootWindows()
{
    static auto* const windows = new std::vector<QtRootWindow*>;
    return *windows;
}

QtRootWindowWidget* QtRootWindow::widget() const
{
    return static_cast<QtRootWindowWidget*>(getWidget());
}

bool QtRootWindow::isAnyPainting()
{
    const auto& windows = rootWindows();
    return std::any_of(windows.begin(), windows.end(), [](const QtRootWindow* window) {
        return window->widget() && window->widget()->isPainting();
    });
}

QWidget* QtRootWindow::latestWidget()
{
    return rootWindows().empty() ? nullptr : rootWindows().back()->getWidget();
}

// -- Making

bool QtRootWindow::realize(const InitArgs& args)
{
    spareWidgetInEvent();
    auto* mine = new QtRootWindowWidget;
    setWidget(mine);
    setEventHandler(args.eventHandler);
    mine->setCursor(cursor_);
    if (args.stayOnTop)
        mine->setWindowFlag(Qt::WindowStaysOnTopHint);
    setTitle(args.title);
    const bool wholeMonitor = choosePlace(args);
    const QPixmap icon = toPixmap(args.icon);
    if (!icon.isNull())
        mine->setWindowIcon(QIcon(icon));
    applyShape(args.shape);
    if (args.visible)
        mine->show();

    if (args.eventHandler) {
        iEventHandler::WindowEvent created;
        created.kind = iEventHandler::WindowEvent::eCreated;
        QtRootWindowWidget::checkHandlerRc(args.eventHandler->handleWindowEvent(created));
    }
    if (wholeMonitor && !args.titleBar && widget())
        widget()->showFullScreen();
    return true;
}

// @return whether the window is to cover its monitor
bool QtRootWindow::choosePlace(const InitArgs& args)
{
    const bool ownSize = args.size.x > 0 && args.size.y > 0 && !args.maximised;
    if (ownSize) {
        if (!args.titleBar)
            widget()->setWindowFlags(widget()->windowFlags() | Qt::FramelessWindowHint |
                                     Qt::SplashScreen);
        widget()->setGeometry(args.position.x, args.position.y, args.size.x, args.size.y);
        return false;
    }
    const XY<int> size = getMonitorSize(args.position);
    const XY<int> position = validDesktopPosition(args.position) ? args.position : XY<int>();
    widget()->setGeometry(position.x, position.y, size.x, size.y);
    widget()->setWindowState(widget()->windowState() | Qt::WindowMaximized);
    return true;
}

void QtRootWindow::applyShape(const Tq::Ptr<iRegion>& shape)
{
    if (const auto region = shape.dynamicCast<QtRegion>())
        widget()->setMask(region->region());
}

void QtRootWindow::setEventHandler(Tq::Ptr<iEventHandler> handler)
{
    eventHandler_ = handler;
    if (widget())
        widget()->setEventHandler(std::move(handler));
}

// -- Place and state

XY<int> QtRootWindow::getSize() const
{
    return widget() ? XY<int>(widget()->width(), widget()->height()) : XY<int>();
}

XY<int> QtRootWindow::getPosition() const
{
    return widget() ? XY<int>(widget()->geometry().x(), widget()->geometry().y()) : XY<int>();
}

Tq::Rectangle<int> QtRootWindow::getUserArea() const
{
    const XY<int> size = getSize();
    return {0, 0, size.x, size.y};
}

bool QtRootWindow::isTitleBarEnabled() const
{
    return !widget() || !widget()->isFullScreen();
}

void QtRootWindow::enableTitleBar(bool enabled)
{
    if (!widget())
        return;
    if (enabled) {
        widget()->setFrameless(false);
        if (savedState_ == kMaximised)
            widget()->showMaximized();
        else
            widget()->showNormal();
    } else {
        if (!widget()->isFullScreen())
            savedState_ = widget()->isMaximized() ? kMaximised : 0;
        widget()->setFrameless(true);
        widget()->showFullScreen();
    }
    if (widget())
        widget()->update();
}

bool QtRootWindow::isMinimised() const
{
    return widget() && widget()->isMinimized();
}

bool QtRootWindow::isMaximised() const
{
    return widget() && widget()->isMaximized();
}

void QtRootWindow::minimise()
{
    if (!widget())
        return;
    widget()->showMaximized();
    widget()->showMinimized();
}

bool QtRootWindow::hasFocus() const
{
    return widget() && widget()->isActiveWindow();
}

void QtRootWindow::claimFocus()
{
    if (widget())
        widget()->activateWindow();
}

bool QtRootWindow::isEnabled() const
{
    return widget() && widget()->isEnabled();
}

void QtRootWindow::setEnabled(bool enabled)
{
    if (widget())
        widget()->setEnabled(enabled);
}

void QtRootWindow::setTitle(const LightweightString<wchar_t>& title)
{
    if (widget())
        widget()->setWindowTitle(OSInternal::toQString(title));
}

void QtRootWindow::setCursor(const QCursor& cursor)
{
    cursor_ = cursor;
    if (widget())
        widget()->setCursor(cursor);
}

void* QtRootWindow::getID() const
{
    return widget();
}

// -- Drawing and messages

Tq::Ptr<iHostImage> QtRootWindow::createCompatibleImage(const XY<int>& size) const
{
    const double ratio = widget() ? widget()->devicePixelRatioF() : 1.0;
    const auto scale = static_cast<unsigned char>(std::clamp(std::ceil(ratio), 1.0, 255.0));
    return new QtImage(size, QtImage::getDefaultFormat(), scale);
}

Tq::Ptr<iFont> QtRootWindow::createFont(const LightweightString<wchar_t>& name, unsigned int size,
                                        unsigned int weight, unsigned int flags) const
{
    return QtFont::make(name, size, weight, flags);
}

Tq::Ptr<iTimer> QtRootWindow::createTimer(unsigned int intervalMs)
{
    return new QtTimer(intervalMs, eventHandler_);
}

Tq::Ptr<iGraphicPrimitivesRenderer> QtRootWindow::getPrimitivesRenderer(bool antialias)
{
    return widget() ? widget()->getPrimitivesRenderer(antialias) : nullptr;
}

void QtRootWindow::postUserMessage()
{
    if (widget())
        QCoreApplication::postEvent(widget(), new QtCustomEvent);
}

void QtRootWindow::queueSubWindowForDeletion(Tq::Ptr<QWidget> window)
{
    if (widget())
        widget()->queueSubWindowForDeletion(std::move(window));
}

Tq::Ptr<iPixelGuard> QtRootWindow::lock()
{
    OSInternal::reportAssertion("false", "OS/Mac/QtRootWindow line 280");
    return nullptr;
}

void QtRootWindow::requestRepaint(const Tq::Ptr<iRegion>&) {}

void QtRootWindow::showProgress(float) {}

XY<int> QtRootWindow::getMonitorSize(const XY<int>& position) const
{
    return Monitors::sizeAt(Monitors::current(), position);
}

bool QtRootWindow::validDesktopPosition(const XY<int>& position) const
{
    return Monitors::hold(Monitors::current(), position);
}
