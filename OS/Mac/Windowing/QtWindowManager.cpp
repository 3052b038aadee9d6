#include "OS/Mac/Windowing/QtWindowManager.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPool.h"
#include "OS/Mac/OpenGL/Widgets/VideoWindow.h"
#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Painting/QtRegion.h"
#include "OS/Mac/Windowing/EventPump.h"
#include "OS/Mac/Windowing/KeyboardState.h"
#include "OS/Mac/Windowing/QtMouseCursor.h"
#include "OS/Mac/Windowing/QtTimer.h"
#include "OS/Mac/Windowing/QuitRequest.h"
#include "OS/Mac/Windowing/StatusWindow.h"

#include <QApplication>
#include <QCursor>
#include <algorithm>
#include <iterator>
#include <utility>

Tq::Ptr<iRootWindow> QtWindowManager::createRootWindow()
{
    if (rootWindow_)
        OSInternal::reportAssertion("rootWindow_ == NULL", "OS/Mac/QtWindowManager line 40");
    if (!OpenGLUtils::isAvailable()) {
        OSInternal::printLine("OpenGL not available - denied!\n");
        return rootWindow_;
    }
    if (!QtApplication::instance()->hasWidgets()) {
        OSInternal::printLine(
            "QtWindowManager::createRootWindow() : no Qt application for windows\n");
        return rootWindow_;
    }
    rootWindow_ = new QtRootWindow;
    applyCursor();
    return rootWindow_;
}

Tq::Ptr<iTimer> QtWindowManager::createTimer(unsigned int intervalMs,
                                             Tq::Ptr<iEventHandler> handler)
{
    QtApplication::instance();
    return new QtTimer(intervalMs, std::move(handler));
}

Tq::Ptr<iFont> QtWindowManager::createFont(const LightweightString<wchar_t>& name,
                                           unsigned int size, unsigned int weight,
                                           unsigned int flags)
{
    return QtFont::make(name, size, weight, flags);
}

Tq::Ptr<iRegion> QtWindowManager::createRegion(const std::vector<Tq::Rectangle<int>>& rectangles)
{
    return new QtRegion(rectangles);
}

// -- The mouse pointer

Tq::Ptr<iMouseCursor> QtWindowManager::createMouseCursor(iMouseCursor::eStockCursor stock)
{
    if (!QtApplication::instance()->hasGui())
        return nullptr;
    return QtMouseCursor::create(stock);
}

Tq::Ptr<iMouseCursor> QtWindowManager::createMouseCursor(Tq::Ptr<iHostImage> image,
                                                         const XY<int>& hotSpot)
{
    if (!QtApplication::instance()->hasGui())
        return nullptr;
    return QtMouseCursor::create(std::move(image), hotSpot);
}

void QtWindowManager::setMouseCursor(Tq::Ptr<iMouseCursor> cursor)
{
    cursor_ = std::move(cursor);
    applyCursor();
}

void QtWindowManager::showMouseCursor(bool shown)
{
    cursorShown_ = shown;
    applyCursor();
}

void QtWindowManager::applyCursor()
{
    if (!rootWindow_)
        return;
    const auto cursor = cursor_.dynamicCast<QtMouseCursor>();
    if (!cursorShown_)
        rootWindow_->setCursor(QCursor(Qt::BlankCursor));
    else
        rootWindow_->setCursor(cursor ? cursor->getCursor() : QCursor(Qt::ArrowCursor));
}

XY<int> QtWindowManager::getMousePosition()
{
    const QPoint position = QCursor::pos();
    return {position.x(), position.y()};
}

// -- Windows beside the root window

Tq::Ptr<iStatusWindow> QtWindowManager::createStatusWindow()
{
    return StatusWindow::make();
}

Tq::Ptr<iVideoWindow> QtWindowManager::createVideoWindow(const XY<int>& position,
                                                         const XY<int>& size)
{
    QWidget* root = QtRootWindow::latestWidget();
    return root ? VideoWindow::makeInside(*root, position, size) : nullptr;
}

Tq::Ptr<iVideoWindow> QtWindowManager::createVideoWindowFullscreen()
{
    return VideoWindow::makeFullscreen(QtRootWindow::latestWidget());
}

void QtWindowManager::getAvailableFonts(std::set<LightweightString<wchar_t>>& names)
{
    if (QtApplication::instance()->hasGui())
        QtFont::getAvailableFonts(names);
}

LightweightString<wchar_t> QtWindowManager::getDefaultFont()
{
    return QtFont::getDefaultFont();
}

bool QtWindowManager::isKeyPressed(unsigned int code)
{
    constexpr unsigned int answered[] = {Key::eControl, Key::eEscape, Key::eSpace,
                                         Key::eShift,   Key::eMeta,   Key::eAlt};
    const bool known =
        std::find(std::begin(answered), std::end(answered), code) != std::end(answered);
    return known && (KeyboardState::getModifiers() & code) != 0;
}

// -- The event loop

void QtWindowManager::despatchPendingEvents()
{
    // A paint that begins inside a paint would draw into a window that is being drawn.
    if (QCoreApplication::instance() && !QtRootWindow::isAnyPainting())
        processEventsExceptInput();
}

int QtWindowManager::startEventLoop()
{
    const bool gui = QtApplication::instance()->hasGui();
    int result = 0;
    if (!QuitRequest::isMade())
        result = gui ? QApplication::exec() : QCoreApplication::exec();
    QuitRequest::finish();
    return result;
}

void QtWindowManager::shutdown()
{
    VideoWindow::shutdown();
    rootWindow_.reset();
    cursor_.reset();
    QtGLWidgetPool::instance().shutdown();
    OpenGLUtils::shutdown();
}
