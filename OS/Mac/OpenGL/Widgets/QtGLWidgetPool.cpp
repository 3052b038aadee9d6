#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPool.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidget.h"
#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <QWindow>
#include <algorithm>
#include <utility>

QtGLWidgetPool& QtGLWidgetPool::instance()
{
    static auto* const pool = new QtGLWidgetPool;
    return *pool;
}

Tq::Ptr<iCriticalSection> QtGLWidgetPool::lock()
{
    if (!lock_) {
        lock_ = OS()->threadMgr()->createCriticalSection(0);
        OSInternal::setLockRank(*lock_, OSInternal::LockRank::ePool);
    }
    return lock_;
}

Tq::Ptr<QtGLWidget> QtGLWidgetPool::get(QWidget* parent, const XY<int>& position,
                                        const XY<int>& size)
{
    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised() || !OpenGLUtils::getSharedContext().getWidget())
        return nullptr;

    const CriticalSectionLock guard(lock());
    const QRect place(position.x, position.y, size.x, size.y);
    if (pooled_.empty()) {
        Tq::Ptr<QtGLWidget> made(
            new QtGLWidget(parent, OpenGLUtils::getSharedContext().getWidget()));
        made->setGeometry(place);
        made->show();
        return made;
    }

    const auto fits = [&](const Pooled& one) {
        return one.widget->parentWidget() == parent && one.widget->size() == place.size();
    };
    const auto same = std::find_if(pooled_.begin(), pooled_.end(), [&](const Pooled& one) {
        return fits(one) && one.widget->pos() == place.topLeft();
    });
    if (same != pooled_.end())
        return take(same);

    const auto sized = std::find_if(pooled_.begin(), pooled_.end(), fits);
    const auto widget = take(sized != pooled_.end() ? sized : pooled_.begin());
    widget->setGeometry(place);
    return widget;
}

Tq::Ptr<QtGLWidget> QtGLWidgetPool::take(List::iterator found)
{
    Pooled taken = std::move(*found);
    pooled_.erase(found);
    QObject::disconnect(taken.parentGone);
    taken.widget->keepHidden(false);
    return taken.widget;
}

void QtGLWidgetPool::insert(Tq::Ptr<QtGLWidget> widget)
{
    if (!widget)
        return;
    const bool widgetHasBeenVisible = widget->windowHandle() && widget->windowHandle()->isExposed();
    if (!widgetHasBeenVisible) {
        OSInternal::reportAssertion("widgetHasBeenVisible", "OS/Mac/QtGLWidgetPool line 122");
        return;
    }
    widget->forgetPicture();
    widget->keepHidden(true);
    widget->setVisible(false);

    Pooled one{widget, {}};
    if (QWidget* parent = widget->parentWidget())
        one.parentGone = QObject::connect(parent, &QObject::destroyed,
                                          [this, gone = widget.get()] { remove(gone); });
    const CriticalSectionLock guard(lock());
    pooled_.push_back(std::move(one));
}

// Its parent is going, and would take it along.
void QtGLWidgetPool::remove(const QtGLWidget* widget)
{
    Tq::Ptr<QtGLWidget> gone; // let go after the lock
    const CriticalSectionLock guard(lock());
    const auto found = std::find_if(pooled_.begin(), pooled_.end(),
                                    [&](const Pooled& one) { return one.widget.get() == widget; });
    if (found != pooled_.end())
        gone = take(found);
}

void QtGLWidgetPool::shutdown()
{
    lock_.reset();
    List released;
    released.swap(pooled_);
    for (const Pooled& one : released)
        QObject::disconnect(one.parentGone);
}
