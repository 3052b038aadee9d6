#pragma once

#include "OS/Mac/Core/Descriptor.h"
#include "OS/Mac/Files/ChildProcess.h"

#include <memory>
#include <mutex>
#include <vector>

/// Reads what children write and collects those that end, also when nobody asks for either: one
/// thread, "Children", for all of them, made for the first child. It handles no signal and waits
/// for no child but its own.
///
/// The only one lives as long as the process. Any thread; its lock is never held while a child's
/// is. A forked child that has not exec'ed has no such thread.
class ChildWatcher
{
public:
    static ChildWatcher& instance();

    void watch(std::shared_ptr<ChildProcess> child);

private:
    using Children = std::vector<std::shared_ptr<ChildProcess>>;

    ChildWatcher();
    bool startThread();
    void run();
    Children children();
    void forget(const Children& gone);
    void waitForNews(const Children& children);

    OSInternal::Descriptor wake_;
    std::mutex lock_;
    Children children_;
    bool hasThread_ = false;
};
