#pragma once

#include <QPointer>
#include <QWidget>

/// A base that owns one widget and destroys it with itself.
///
/// The toolkit may destroy the widget first (its application object takes all that are left): then
/// the owner has none. An owner that goes on another thread than the widget's leaves it to that
/// thread.
class QWidgetOwner
{
public:
    QWidgetOwner(const QWidgetOwner&) = delete;
    QWidgetOwner& operator=(const QWidgetOwner&) = delete;

protected:
    QWidgetOwner() = default;
    ~QWidgetOwner();

    /// Takes a widget over; one owned before is destroyed.
    void setWidget(QWidget* widget);
    QWidget* getWidget() const { return owned_.data(); }
    /// Leaves the widget, if any, to be destroyed by the event loop: for use inside one of its
    /// events.
    void destroyWidgetLater();

private:
    QPointer<QWidget> owned_;
};
