#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include <QGLContext>

#include <utility>

QtGLWindowUpdater& QtGLWindowUpdater::instance()
{
    static auto* const updater = new QtGLWindowUpdater;
    return *updater;
}

QtGLWindowUpdater::QtGLWindowUpdater() : tasks_(new TaskQueue("QtGLWindowUpdater")) {}

Tq::Ptr<TaskQueue> QtGLWindowUpdater::running() const
{
    const std::lock_guard lock(guard_);
    return tasks_;
}

bool QtGLWindowUpdater::bind(QGLContext* context)
{
    const Tq::Ptr<TaskQueue> tasks = running();
    if (tasks)
        context->moveToThread(tasks->getQThread());
    return tasks != nullptr;
}

// Under the guard: a queue that has been shut down must not be appended to.
void QtGLWindowUpdater::queue(Tq::Ptr<iExecutable> task)
{
    const std::lock_guard lock(guard_);
    if (tasks_)
        tasks_->queue(std::move(task));
}

void QtGLWindowUpdater::clear()
{
    if (const Tq::Ptr<TaskQueue> tasks = running())
        tasks->clear();
}

void QtGLWindowUpdater::shutdown()
{
    Tq::Ptr<TaskQueue> ending;
    {
        const std::lock_guard lock(guard_);
        ending.swap(tasks_);
    }
    if (ending)
        ending->shutdown();
}
