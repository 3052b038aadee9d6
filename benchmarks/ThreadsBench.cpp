// Task queues and events against their peers. Both use two processors: the producer or setter runs
// on the first, the worker on the second, unless a row says "one CPU".
#include "support/PairedRuns.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/TaskQueue.h>
#include <OS/Threads/iThreadManager.h>

#include <QRunnable>
#include <QThreadPool>

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <array>
#include <atomic>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <uv.h>

namespace {

using Clock = std::chrono::steady_clock;

void pinTo(int cpu)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(cpu, &set);
    pthread_setaffinity_np(pthread_self(), sizeof set, &set);
}

// -- Task queues

constexpr int kTasks = 200'000;
constexpr int kLatencyRounds = 400;

// What every task does, whoever runs it.
struct Counter
{
    std::atomic<int> ran{0};
    std::atomic<Clock::rep> lastRun{0};

    void count() { ran.store(ran.load(std::memory_order_relaxed) + 1, std::memory_order_release); }
    void stamp()
    {
        lastRun.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
        count();
    }
    void waitFor(int tasks) const
    {
        while (ran.load(std::memory_order_acquire) < tasks)
            __builtin_ia32_pause();
    }
};

enum class Job
{
    eCount,
    eStamp,
    ePin
};

void perform(Job job, Counter& counter)
{
    if (job == Job::ePin)
        pinTo(1);
    if (job == Job::eStamp)
        counter.stamp();
    else
        counter.count();
}

class CountingItem final : public iExecutable
{
public:
    CountingItem(Job job, Counter& counter) : job_(job), counter_(counter) {}
    void execute() override { perform(job_, counter_); }

private:
    Job job_;
    Counter& counter_;
};

class OurQueue
{
public:
    static constexpr const char* kName = "TaskQueue";
    void post(Job job, Counter& counter)
    {
        queue_.queue(Tq::Ptr<iExecutable>(new CountingItem(job, counter)));
    }
    void finish() {}

private:
    TaskQueue queue_{"bench"};
};

// The queue as its description has it: a linked list, and a signal for every item.
class ListQueue
{
public:
    static constexpr const char* kName = "list, signal each";
    ListQueue()
    {
        iThread::InitArgs args;
        args.func_ = [](void* self) {
            static_cast<ListQueue*>(self)->run();
            return iThread::eExecSucceeded;
        };
        args.arg_ = this;
        worker_ = OS()->threadMgr()->createThread(args);
    }
    ~ListQueue()
    {
        running_ = false;
        wakeUp_->set();
        worker_->waitForCompletion(0);
    }
    void post(Job job, Counter& counter)
    {
        const Tq::Ptr<iExecutable> item(new CountingItem(job, counter));
        queueLock_->lock();
        pending_.push_back(item);
        queueLock_->unlock();
        wakeUp_->set();
    }
    void finish() {}

private:
    void run()
    {
        while (true) {
            wakeUp_->wait(iWaitable::kNoTimeOut);
            if (!running_)
                return;
            std::list<Tq::Ptr<iExecutable>> batch;
            queueLock_->lock();
            batch.swap(pending_);
            queueLock_->unlock();
            const CriticalSectionLock executing(executionLock_);
            for (const auto& item : batch)
                item->execute();
        }
    }

    Tq::Ptr<iCriticalSection> queueLock_ = OS()->threadMgr()->createCriticalSection(0);
    Tq::Ptr<iCriticalSection> executionLock_ = OS()->threadMgr()->createCriticalSection(0);
    Tq::Ptr<iThreadEvent> wakeUp_ = OS()->threadMgr()->createEvent(false, false, nullptr);
    std::list<Tq::Ptr<iExecutable>> pending_;
    std::atomic<bool> running_{true};
    Tq::Ptr<iThread> worker_;
};

class AsioPool
{
public:
    static constexpr const char* kName = "asio thread_pool(1)";
    ~AsioPool() { pool_.join(); }
    void post(Job job, Counter& counter)
    {
        struct Item
        {
            Job job;
            Counter& counter;
        };
        boost::asio::post(pool_, [item = std::make_unique<Item>(Item{job, counter})] {
            perform(item->job, item->counter);
        });
    }
    void finish() {}

private:
    boost::asio::thread_pool pool_{1};
};

class QtPool
{
public:
    static constexpr const char* kName = "QThreadPool(1)";
    QtPool()
    {
        pool_.setMaxThreadCount(1);
        pool_.setExpiryTimeout(-1);
    }
    void post(Job job, Counter& counter) { pool_.start(new Item(job, counter)); }
    void finish() {}

private:
    class Item final : public QRunnable
    {
    public:
        Item(Job job, Counter& counter) : job_(job), counter_(counter) {}
        void run() override { perform(job_, counter_); }

    private:
        Job job_;
        Counter& counter_;
    };
    QThreadPool pool_;
};

class UvPool
{
public:
    static constexpr const char* kName = "uv_queue_work(1)";
    UvPool() { uv_loop_init(&loop_); }
    ~UvPool()
    {
        finish();
        uv_loop_close(&loop_);
    }
    void post(Job job, Counter& counter)
    {
        auto* item = new Item{{}, job, counter};
        item->request.data = item;
        uv_queue_work(
            &loop_, &item->request,
            [](uv_work_t* request) {
                auto* self = static_cast<Item*>(request->data);
                perform(self->job, self->counter);
            },
            [](uv_work_t* request, int) { delete static_cast<Item*>(request->data); });
    }
    // The requests are freed by the loop; not part of what is timed.
    void finish() { uv_run(&loop_, UV_RUN_DEFAULT); }

private:
    struct Item
    {
        uv_work_t request;
        Job job;
        Counter& counter;
    };
    uv_loop_t loop_;
};

template <class Queue>
class QueueBench
{
public:
    QueueBench()
    {
        Counter counter;
        queue_.post(Job::ePin, counter);
        counter.waitFor(1);
        queue_.finish();
    }

    double throughput()
    {
        Counter counter;
        const double cost = Bench::timed(kTasks, [&] {
            for (int i = 0; i < kTasks; ++i)
                queue_.post(Job::eCount, counter);
            counter.waitFor(kTasks);
        });
        queue_.finish();
        return cost;
    }

    // Median of the time from posting to running, with the worker asleep.
    double latency()
    {
        std::vector<double> times;
        for (int i = 0; i < kLatencyRounds; ++i) {
            Counter counter;
            std::this_thread::sleep_for(std::chrono::microseconds(200));
            const auto start = Clock::now().time_since_epoch().count();
            queue_.post(Job::eStamp, counter);
            counter.waitFor(1);
            times.push_back(static_cast<double>(counter.lastRun.load() - start));
            queue_.finish();
        }
        return Bench::median(times);
    }

private:
    Queue queue_;
};

void benchQueues()
{
    setenv("UV_THREADPOOL_SIZE", "1", 1);
    QueueBench<OurQueue> ours;
    QueueBench<ListQueue> list;
    QueueBench<AsioPool> asio;
    QueueBench<QtPool> qt;
    QueueBench<UvPool> uv;
    const std::vector<std::string> peers{AsioPool::kName, QtPool::kName, UvPool::kName};

    Bench::printHeader("Task queues, per task");
    Bench::compare("200,000 tasks",
                   {{OurQueue::kName, [&] { return ours.throughput(); }},
                    {ListQueue::kName, [&] { return list.throughput(); }},
                    {AsioPool::kName, [&] { return asio.throughput(); }},
                    {QtPool::kName, [&] { return qt.throughput(); }},
                    {UvPool::kName, [&] { return uv.throughput(); }}},
                   {{peers, 0.75},
                    {{peers[0]}, 0},
                    {{peers[1]}, 0},
                    {{peers[2]}, 0},
                    {{ListQueue::kName}, 0}});
    Bench::compare("post to run, worker asleep",
                   {{OurQueue::kName, [&] { return ours.latency(); }},
                    {AsioPool::kName, [&] { return asio.latency(); }},
                    {QtPool::kName, [&] { return qt.latency(); }},
                    {UvPool::kName, [&] { return uv.latency(); }}},
                   {{peers, 1.1}, {{peers[0]}, 0}, {{peers[1]}, 0}, {{peers[2]}, 0}});
}

// -- Events

constexpr int kEvents = 64;

class OurEvent
{
public:
    void set() { event_->set(); }
    bool poll() { return event_->wait(0) == iWaitable::eWaitSignalled; }
    void wait() { event_->wait(iWaitable::kNoTimeOut); }
    const Tq::Ptr<iThreadEvent>& pointer() const { return event_; }

private:
    Tq::Ptr<iThreadEvent> event_ = OS()->threadMgr()->createEvent(false, false, nullptr);
};

// A flag under the standard library's mutex and condition variable.
class StandardEvent
{
public:
    void set()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            set_ = true;
        }
        changed_.notify_one();
    }
    bool poll()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(set_, false);
    }
    void wait()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return set_; });
        set_ = false;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool set_ = false;
};

class EventFd
{
public:
    EventFd() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}
    ~EventFd() { close(descriptor_); }
    void set() { eventfd_write(descriptor_, 1); }
    bool poll() { return ready(0); }
    void wait() { ready(-1); }
    int descriptor() const { return descriptor_; }

private:
    bool ready(int timeoutMs)
    {
        pollfd entry{descriptor_, POLLIN, 0};
        eventfd_t value;
        return ::poll(&entry, 1, timeoutMs) > 0 && eventfd_read(descriptor_, &value) == 0;
    }
    int descriptor_;
};

// Nothing but the locks that an event has to take, in their order, on the system's own calls: what
// no implementation of the published sequence can go below.
class LockSequence
{
public:
    LockSequence()
    {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
        for (pthread_mutex_t* mutex : {&list_, &state_, &subscriber_})
            pthread_mutex_init(mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    void set()
    {
        pthread_mutex_lock(&state_);
        set_ = true;
        pthread_mutex_unlock(&state_);
        pthread_mutex_lock(&list_);
        if (waiting_) {
            pthread_mutex_lock(&subscriber_);
            pthread_cond_signal(&condition_);
            pthread_mutex_unlock(&subscriber_);
        }
        pthread_mutex_unlock(&list_);
    }
    bool poll()
    {
        pthread_mutex_lock(&state_);
        const bool result = std::exchange(set_, false);
        pthread_mutex_unlock(&state_);
        return result;
    }
    void wait()
    {
        registerWaiter(true);
        pthread_mutex_lock(&state_);
        while (!set_) {
            pthread_mutex_lock(&subscriber_);
            pthread_mutex_unlock(&state_);
            pthread_cond_wait(&condition_, &subscriber_);
            pthread_mutex_lock(&state_);
            pthread_mutex_unlock(&subscriber_);
        }
        set_ = false;
        pthread_mutex_unlock(&state_);
        registerWaiter(false);
    }

private:
    void registerWaiter(bool waiting)
    {
        pthread_mutex_lock(&list_);
        waiting_ = waiting;
        pthread_mutex_unlock(&list_);
    }
    pthread_mutex_t list_, state_, subscriber_;
    pthread_cond_t condition_ = PTHREAD_COND_INITIALIZER;
    bool set_ = false, waiting_ = false;
};

template <class Event>
double setAndPoll()
{
    constexpr int kRounds = 1'000'000;
    Event event;
    return Bench::timed(kRounds, [&] {
        for (int i = 0; i < kRounds; ++i) {
            event.set();
            Bench::keep(event.poll());
        }
    });
}

// One hand-over between two threads on the same processor, in microseconds.
template <class Event>
double wakeOnOneCpu()
{
    constexpr int kRounds = 20'000;
    Event ping, pong;
    std::thread partner([&] {
        pinTo(0);
        for (int i = 0; i < kRounds; ++i) {
            ping.wait();
            pong.set();
        }
    });
    const double cost = Bench::timed(2.0 * kRounds, [&] {
        for (int i = 0; i < kRounds; ++i) {
            ping.set();
            pong.wait();
        }
    });
    partner.join();
    return cost / 1000.0;
}

constexpr int kPollRounds = 50'000;

double ourAnyOf64()
{
    std::vector<OurEvent> events(kEvents);
    std::vector<Tq::Ptr<iThreadEvent>> pointers;
    for (const auto& event : events)
        pointers.push_back(event.pointer());
    iThreadManager& manager = *OS()->threadMgr();
    return Bench::timed(kPollRounds, [&] {
        for (int i = 0; i < kPollRounds; ++i) {
            events.back().set();
            Bench::keep(manager.waitForEvents(pointers, false, 0));
        }
    });
}

// One event after the other, by its own poll.
template <class Event>
double anyOf64ByPolling()
{
    std::array<Event, kEvents> events;
    return Bench::timed(kPollRounds, [&] {
        for (int i = 0; i < kPollRounds; ++i) {
            events.back().set();
            for (Event& event : events)
                if (event.poll())
                    break;
        }
    });
}

double eventFdAnyOf64()
{
    std::array<EventFd, kEvents> events;
    std::array<pollfd, kEvents> entries;
    for (std::size_t i = 0; i < kEvents; ++i)
        entries[i] = {events[i].descriptor(), POLLIN, 0};
    return Bench::timed(kPollRounds, [&] {
        for (int i = 0; i < kPollRounds; ++i) {
            events.back().set();
            eventfd_t value;
            if (poll(entries.data(), kEvents, 0) > 0)
                for (const pollfd& entry : entries)
                    if (entry.revents)
                        eventfd_read(entry.fd, &value);
        }
    });
}

void benchEvents()
{
    const std::string standard = "mutex + condvar", fd = "eventfd + poll",
                      floor = "the locks alone";
    const std::vector<Bench::Goal> goals{{{standard}, 0}, {{fd}, 0}, {{floor}, 0}};
    Bench::printHeader("Events");
    Bench::compare("set + poll",
                   {{"ours", setAndPoll<OurEvent>},
                    {standard, setAndPoll<StandardEvent>},
                    {fd, setAndPoll<EventFd>},
                    {floor, setAndPoll<LockSequence>}},
                   goals);
    Bench::compare("any of 64, the last set, poll",
                   {{"ours", ourAnyOf64},
                    {standard, anyOf64ByPolling<StandardEvent>},
                    {fd, eventFdAnyOf64},
                    {floor, anyOf64ByPolling<LockSequence>}},
                   goals);
    Bench::printHeader("Events, waking", "us");
    Bench::compare("hand-over, one CPU",
                   {{"ours", wakeOnOneCpu<OurEvent>},
                    {standard, wakeOnOneCpu<StandardEvent>},
                    {fd, wakeOnOneCpu<EventFd>},
                    {floor, wakeOnOneCpu<LockSequence>}},
                   goals);
}

} // namespace

// @param arguments "queues" or "events" for one half
int main(int count, char** arguments)
{
    const std::string part = count > 1 ? arguments[1] : "";
    OS();
    pinTo(0);
    if (part != "events")
        benchQueues();
    if (part != "queues")
        benchEvents();
}
