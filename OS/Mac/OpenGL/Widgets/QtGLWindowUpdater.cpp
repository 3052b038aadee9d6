#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include <OS/Threads/CriticalSectionLock.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGLContext>
#include <QSemaphore>
#include <memory>
#include <utility>

namespace {

// Destroys the contexts of widgets that are gone. The toolkit leaves that to the thread that a
// context belongs to, and a thread without an event loop would do it as it ends, when the toolkit
// cannot any more.
class ContextRemoval final : public iExecutable
{
public:
    /// @param done gets a unit when the task has run or was dropped
    explicit ContextRemoval(std::shared_ptr<QSemaphore> done) : done_(std::move(done)) {}
    ~ContextRemoval() override { done_->release(); }
    void execute() override
    {
        const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

private:
    const std::shared_ptr<QSemaphore> done_;
};

} // namespace

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
    if (!tasks)
        return false;
    context->moveToThread(tasks->getQThread());
    queue(new ContextRemoval(std::make_shared<QSemaphore>()));
    return true;
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
    if (!ending)
        return;
    // Nobody else can clear the queue any more.
    const auto done = std::make_shared<QSemaphore>();
    ending->queue(new ContextRemoval(done));
    done->acquire();
    ending->shutdown();
}
