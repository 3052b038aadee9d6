#include "OS/Mac/Windowing/StatusWindow.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/Core/QtText.h"
#include "OS/Mac/Windowing/EventPump.h"
#include "OS/Mac/Windowing/QtRootWindow.h"
#include "OS/Mac/Windowing/StatusWindowWidget.h"

#include <QElapsedTimer>
#include <QWindow>

namespace {

constexpr int kLongestWaitMs = 500;

void waitUntilExposed(const QPointer<QWidget>& widget)
{
    QElapsedTimer waited;
    waited.start();
    while (widget && widget->windowHandle() && !widget->windowHandle()->isExposed() &&
           waited.elapsed() < kLongestWaitMs)
        processEventsExceptInput(10);
}

} // namespace

Tq::Ptr<iStatusWindow> StatusWindow::make()
{
    if (!QtApplication::instance()->hasWidgets())
        return nullptr;
    return new StatusWindow;
}

StatusWindow::StatusWindow()
{
    setWidget(new StatusWindowWidget);
}

StatusWindowWidget* StatusWindow::widget() const
{
    return static_cast<StatusWindowWidget*>(getWidget());
}

void StatusWindow::show()
{
    if (!widget())
        return;
    widget()->placeOver(QtRootWindow::latestWidget());
    widget()->show();
    if (!QtRootWindow::isAnyPainting())
        waitUntilExposed(widget());
    if (widget())
        widget()->repaint();
}

void StatusWindow::hide()
{
    if (widget())
        widget()->hide();
}

bool StatusWindow::isVisible() const
{
    return widget() && widget()->isVisible();
}

void StatusWindow::setTitle(const LightweightString<wchar_t>& title)
{
    if (widget())
        widget()->setTitle(OSInternal::toQString(title));
}

void StatusWindow::setMessage(const LightweightString<wchar_t>& message)
{
    if (widget())
        widget()->setMessage(OSInternal::toQString(message));
}

void StatusWindow::setProgress(float fraction)
{
    if (widget())
        widget()->setProgress(fraction);
}
