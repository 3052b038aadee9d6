#include "OS/Mac/Threads/Thread.h"

#include "OS/Mac/Core/Assertion.h"

#include <algorithm>
#include <sched.h>

using OSInternal::reportAssertion;

struct Thread::Shared final : Tq::InternalRefCount
{
    explicit Shared(const InitArgs& args) : func(args.func_), arg(args.arg_), name(args.name_) {}

    eExecRC (*const func)(void*);
    void* const arg;
    const LightweightString<char> name;
    std::atomic<bool> running{true};
};

namespace {

constexpr std::size_t kMinimumStackBytes = 1'048'576;
constexpr std::size_t kKernelNameBytes = 15;
constexpr float kHighestPriority = 5.0f;

// The kernel refuses longer names; a cut character would show as garbage.
void nameCurrentThread(const LightweightString<char>& name)
{
    std::size_t length = name.size();
    if (length > kKernelNameBytes) {
        length = kKernelNameBytes;
        while (length > 0 && (static_cast<unsigned char>(name.c_str()[length]) & 0xC0) == 0x80)
            --length;
    }
    char text[kKernelNameBytes + 1] = {};
    std::copy_n(name.c_str(), length, text);
    pthread_setname_np(pthread_self(), text);
}

} // namespace

Thread::Thread(const InitArgs& args) : shared_(new Shared(args)), priority_(args.priority_)
{
    if (args.createSuspended_)
        reportAssertion("args.createSuspended_ == false", "OS/Mac/Thread line 18");
    start(args.stackSize_);
}

void Thread::start(std::uint32_t stackSizeBytes)
{
    Tq::Ptr<Shared> forThread = shared_;
    pthread_t handle = 0;
    int rc;
    // The new thread takes this share over; see execute.
    Tq::detail::increment(shared_->refCount());
    if (stackSizeBytes == 0) {
        rc = pthread_create(&handle, nullptr, &Thread::execute, forThread.get());
    } else {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes,
                                  std::max<std::size_t>(stackSizeBytes, kMinimumStackBytes));
        rc = pthread_create(&handle, &attributes, &Thread::execute, forThread.get());
        pthread_attr_destroy(&attributes);
    }
    id_.store(allocThreadID(), std::memory_order_relaxed);
    if (rc == 0) {
        handle_ = handle;
        return;
    }
    Tq::Ptr<Shared>::adoptCounted(forThread.get());
    reportAssertion("rc == 0", "OS/Mac/Thread line 44");
}

Thread::~Thread()
{
    if (handle_ != 0)
        pthread_detach(handle_);
}

void* Thread::execute(void* shared)
{
    const auto self = Tq::Ptr<Shared>::adoptCounted(static_cast<Shared*>(shared));
    if (!self->name.empty())
        nameCurrentThread(self->name);
    self->func(self->arg);
    self->running.store(false, std::memory_order_release);
    return nullptr;
}

std::uint32_t Thread::allocThreadID()
{
    static std::atomic<std::uint32_t> lastID{0};
    const std::uint32_t next = lastID.load(std::memory_order_relaxed) + 1;
    lastID.store(next, std::memory_order_relaxed);
    return next;
}

iThread::eExecRC Thread::protectedExecute(eExecRC (*function)(void*), void* argument,
                                          void (*)(const Exception&))
{
    function(argument);
    return static_cast<eExecRC>(0);
}

void Thread::exitCurrentThread()
{
    pthread_exit(nullptr);
}

std::uint32_t Thread::getID() const
{
    return id_.load(std::memory_order_relaxed);
}

iThread::ePriority Thread::getPriority() const
{
    return ePriorityNormal;
}

bool Thread::setPriority(ePriority priority)
{
    if (handle_ == 0)
        return false;
    const float fraction = static_cast<float>(priority) / kHighestPriority;
    const int highest = sched_get_priority_max(SCHED_OTHER);
    const int lowest = sched_get_priority_min(SCHED_OTHER);
    sched_param parameters{};
    parameters.sched_priority =
        lowest + static_cast<int>(static_cast<float>(highest - lowest) * fraction);
    return pthread_setschedparam(handle_, SCHED_OTHER, &parameters) == 0;
}

bool Thread::setAffinity(unsigned int /*mask*/)
{
    return false;
}

void Thread::resume()
{
    reportAssertion("false", "OS/Mac/Thread line 156");
}

void Thread::suspend()
{
    reportAssertion("false", "OS/Mac/Thread line 161");
}

bool Thread::waitForCompletion(unsigned int /*timeoutMs*/) const
{
    if (!shared_->running.load(std::memory_order_acquire))
        return false;
    // A thread cannot wait for itself: it keeps its handle, to be detached in the end.
    if (handle_ != 0 && !pthread_equal(handle_, pthread_self()) &&
        pthread_join(handle_, nullptr) == 0)
        handle_ = 0;
    return true;
}

Tq::Ptr<iObject> Thread::getObject(const LightweightString<char>& name)
{
    const auto found = objects_.find(name);
    return found == objects_.end() ? Tq::Ptr<iObject>() : found->second;
}

void Thread::setObject(const LightweightString<char>& name, Tq::Ptr<iObject> object)
{
    objects_[name] = std::move(object);
}
