#pragma once

#include "support/PairedRuns.h"

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>

#include <boost/intrusive_ptr.hpp>

#include <atomic>
#include <memory>
#include <thread>

/// Copying and releasing a shared pointer, ours and its peers; compiled once in a client and once
/// in the library.
namespace Bench {

struct Counted : iObject
{
};

struct BoostCounted
{
    std::atomic<int> count{0};
    virtual ~BoostCounted() = default;
};
inline void intrusive_ptr_add_ref(BoostCounted* object)
{
    object->count.fetch_add(1, std::memory_order_relaxed);
}
inline void intrusive_ptr_release(BoostCounted* object)
{
    if (object->count.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete object;
}

template <class Pointer>
double copyAndRelease(const Pointer& pointer)
{
    constexpr int kCount = 2'000'000;
    return timed(kCount, [&] {
        for (int i = 0; i < kCount; ++i) {
            Pointer copy = pointer;
            keep(copy);
        }
    });
}

/// Alive during a comparison, so that the standard pointer counts atomically as it does in a real
/// program.
class SecondThread
{
public:
    SecondThread()
        : thread_([this] {
              while (!stop_)
                  std::this_thread::sleep_for(std::chrono::milliseconds(20));
          })
    {
    }
    ~SecondThread()
    {
        stop_ = true;
        thread_.join();
    }

private:
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

inline void comparePointers(const char* what, std::vector<Goal> goals)
{
    const SecondThread second;
    const Tq::Ptr<Counted> ours = new Counted;
    const boost::intrusive_ptr<BoostCounted> intrusive(new BoostCounted);
    const auto shared = std::make_shared<int>(1);
    compare(what,
            {{"Tq::Ptr", [&] { return copyAndRelease(ours); }},
             {"boost::intrusive_ptr", [&] { return copyAndRelease(intrusive); }},
             {"std::shared_ptr", [&] { return copyAndRelease(shared); }}},
            goals);
}

} // namespace Bench
