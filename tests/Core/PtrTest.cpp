#include <OS.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>

#include <gtest/gtest.h>

#include <thread>
#include <unordered_set>
#include <vector>

namespace {

struct Left : public virtual iObject
{
};
struct Right : public virtual iObject
{
};

// Counts how many of it live.
struct Probe : public Left, public Right
{
    explicit Probe(int& alive_) : alive(alive_) { ++alive; }
    ~Probe() override { --alive; }
    int& alive;
};

struct Plain
{
    explicit Plain(int& alive_) : alive(alive_) { ++alive; }
    ~Plain() { --alive; }
    int& alive;
};
using PlainPtr = Tq::Ptr<Plain, Tq::DtorTraits, Tq::ExternalRefCountTraits>;

// Records the order in which the policy frees the count and the object.
std::vector<const char*> events;
struct LoggingTraits : Tq::ExternalRefCountTraits
{
    static void freeCount(volatile int* count)
    {
        events.push_back("count");
        ExternalRefCountTraits::freeCount(count);
    }
};
struct LoggingDtor
{
    static void destroy(int* object)
    {
        events.push_back("object");
        delete object;
    }
};

} // namespace

TEST(Ptr, CountsThroughEveryOperationAndDestroysOnce)
{
    int alive = 0;
    {
        Tq::Ptr<Probe> a = new Probe(alive);
        EXPECT_EQ(a.useCount(), 1);
        Tq::Ptr<Probe> b = a;
        Tq::Ptr<Left> left = b;
        Tq::Ptr<iObject> object = left;
        EXPECT_EQ(a.useCount(), 4) << "one count however the object is seen";
        Tq::Ptr<iObject> moved = std::move(object);
        EXPECT_EQ(a.useCount(), 4);
        EXPECT_FALSE(object);
        EXPECT_EQ(moved.dynamicCast<Right>().get(), static_cast<Right*>(a.get()));
        EXPECT_FALSE(moved.dynamicCast<std::exception>());
        a.reset();
        b = nullptr;
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(Ptr, SelfAssignmentKeepsTheObject)
{
    int alive = 0;
    Tq::Ptr<Probe> a = new Probe(alive);
    auto& same = a;
    a = same;
    EXPECT_EQ(a.useCount(), 1);
    a = std::move(same);
    EXPECT_EQ(a.useCount(), 1);
    EXPECT_EQ(alive, 1);
}

TEST(Ptr, AssigningTheLastReferenceToAnotherOfTheSameObjectKeepsIt)
{
    int alive = 0;
    Probe* raw = new Probe(alive);
    Tq::Ptr<Probe> a(raw);
    Tq::Ptr<Probe> b(raw); // the internal count makes a second pointer from the raw one safe
    b = a;
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(a.useCount(), 2);
}

TEST(Ptr, AnEmptyPointerDoesNothing)
{
    Tq::Ptr<Probe> none;
    Tq::Ptr<Probe> copy = none;
    copy = nullptr;
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(none.useCount(), 0);
    EXPECT_EQ(none, Tq::Ptr<Probe>(static_cast<Probe*>(nullptr)));
}

TEST(Ptr, TheExternalPolicyFreesItsCountBeforeTheObject)
{
    events.clear();
    {
        Tq::Ptr<int, LoggingDtor, LoggingTraits> a = new int(1);
        auto b = a;
        EXPECT_EQ(b.useCount(), 2);
    }
    EXPECT_EQ(events, (std::vector<const char*>{"count", "object"}));
}

TEST(Ptr, TheExternalPolicySharesOneObject)
{
    int alive = 0;
    {
        PlainPtr a = new Plain(alive);
        PlainPtr b = a;
        a.reset();
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(Ptr, AnObjectThatReleasesItsOwnerInItsDestructorIsDestroyedOnce)
{
    struct Node : public iObject
    {
        Tq::Ptr<Node> next;
    };
    Tq::Ptr<Node> list = new Node;
    list->next = new Node;
    list = list->next; // the assigned pointer lives inside the object that goes
    EXPECT_EQ(list.useCount(), 1);
}

TEST(Ptr, CopiesOnManyThreadsLoseNoCount)
{
    int alive = 0;
    Tq::Ptr<Probe> shared = new Probe(alive);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([shared] {
            for (int i = 0; i < 20'000; ++i) {
                Tq::Ptr<Probe> copy = shared;
                Tq::Ptr<Left> other = copy;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(shared.useCount(), 1);
}

TEST(Ptr, HashesAndOrdersByTheObject)
{
    int alive = 0;
    Tq::Ptr<Probe> a = new Probe(alive);
    Tq::Ptr<Probe> b = new Probe(alive);
    std::unordered_set<Tq::Ptr<Probe>> set{a, b, a};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_NE(a < b, b < a);
}
