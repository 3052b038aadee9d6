#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Threads/TaskQueue.h>
#include <OS/Threads/iExecutable.h>

#include <mutex>

class QGLContext;

/// The thread that draws: a task queue named "QtGLWindowUpdater". It owns the GL context of every
/// display widget; all drawing into widgets and their resizes are its tasks.
///
/// One for the process, started by the first instance(), never destroyed. After shutdown() tasks
/// are released unrun.
class QtGLWindowUpdater
{
public:
    static QtGLWindowUpdater& instance();
    QtGLWindowUpdater(const QtGLWindowUpdater&) = delete;
    QtGLWindowUpdater& operator=(const QtGLWindowUpdater&) = delete;

    /// Moves a context, current nowhere, to the updater's thread. Waits for that thread to start.
    /// The contexts of widgets that have gone before are destroyed there.
    /// On the thread that the context belongs to.
    /// @return false after shutdown()
    bool bind(QGLContext* context);
    /// Appends a task. From any thread.
    void queue(Tq::Ptr<iExecutable> task);
    /// Drops every task that has not begun and waits for those in progress, whichever widget they
    /// are for. Not with the GL lock or any lock that a task takes; from a task it does not wait.
    void clear();
    /// Ends the thread after the tasks that are queued and the end of the contexts it owns. On the
    /// thread of the event loop, without the GL lock. A second call does nothing.
    void shutdown();

private:
    QtGLWindowUpdater();
    Tq::Ptr<TaskQueue> running() const;

    mutable std::mutex guard_; // a leaf: nothing is called under it but the queue's append
    Tq::Ptr<TaskQueue> tasks_; // null after shutdown()
};
