#pragma once

#include "OS/Mac/OpenGL/Contexts/QtPointers.h"

#include <OS/Core/Ptr.h>
#include <OS/Primitives/XY.h>
#include <OS/Threads/iCriticalSection.h>

#include <QObject>

#include <vector>

class QWidget;

/// Keeps hidden GL widgets for use again: making one takes tens of milliseconds.
///
/// One for the process, used on the thread of the event loop, never destroyed. A pooled widget goes
/// when its parent goes. The pool lock guards the list, and is held for the whole of get().
class QtGLWidgetPool
{
public:
    static QtGLWidgetPool& instance();
    QtGLWidgetPool(const QtGLWidgetPool&) = delete;
    QtGLWidgetPool& operator=(const QtGLWidgetPool&) = delete;

    /// A widget at a place in its parent. From an empty pool a new one, shown; else, hidden:
    /// the first with this parent, position and size, as it is; else the first with this parent
    /// and size, moved; else the first of all, given the place but deliberately not the parent:
    /// the caller gives it that, and shows it.
    /// @return null after OpenGLUtils::shutdown(), or where GL is not to be had
    Tq::Ptr<QtGLWidget> get(QWidget* parent, const XY<int>& position, const XY<int>& size);
    /// Hides a widget whose native window is exposed and keeps it, last in the list. Any other is
    /// let go, with the assertion report for "widgetHasBeenVisible" at "OS/Mac/QtGLWidgetPool line
    /// 122"; null is ignored. Without the GL lock.
    void insert(Tq::Ptr<QtGLWidget> widget);
    /// Releases the lock and all widgets. Without the GL lock.
    void shutdown();
    /// How many widgets are kept.
    std::size_t size() const { return pooled_.size(); }

private:
    struct Pooled
    {
        Tq::Ptr<QtGLWidget> widget;
        QMetaObject::Connection parentGone;
    };
    using List = std::vector<Pooled>;

    QtGLWidgetPool() = default;
    Tq::Ptr<iCriticalSection> lock();
    Tq::Ptr<QtGLWidget> take(List::iterator found);
    void remove(const QtGLWidget* widget);

    List pooled_;
    Tq::Ptr<iCriticalSection> lock_; // made when first needed
};
