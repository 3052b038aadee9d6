#include "OS/Mac/Threads/LockRank.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

namespace {

Tq::Ptr<iCriticalSection> makeSection()
{
    return OS()->threadMgr()->createCriticalSection(0);
}

bool anotherThreadCanLock(iCriticalSection& section)
{
    return BackgroundThread([&] {
               const bool locked = section.lockIfNotLocked();
               if (locked)
                   section.unlock();
               return locked;
           })
        .result();
}

} // namespace

TEST(CriticalSection, IsFreeForOthersOnlyAfterAsManyUnlocksAsLocks)
{
    const auto section = makeSection();
    section->lock();
    EXPECT_TRUE(section->lockIfNotLocked());
    section->unlock();
    EXPECT_FALSE(anotherThreadCanLock(*section));
    section->unlock();
    EXPECT_TRUE(anotherThreadCanLock(*section));
}

TEST(CriticalSection, KeepsOthersOut)
{
    constexpr int kRounds = 20'000;
    const auto section = makeSection();
    int count = 0;
    BackgroundThreads threads(4, [&] {
        for (int i = 0; i < kRounds; ++i) {
            const CriticalSectionLock lock(section);
            ++count;
        }
    });
    threads.join();
    EXPECT_EQ(count, 4 * kRounds);
}

TEST(CriticalSection, ReportsASpinCountAndWorks)
{
    Tq::Ptr<iCriticalSection> section;
    EXPECT_EQ(outputOf([&] { section = OS()->threadMgr()->createCriticalSection(4000); }),
              "assertion failed spinCount == 0 at OS/Mac/CriticalSection line 23\n");
    const CriticalSectionLock lock(section);
    EXPECT_FALSE(anotherThreadCanLock(*section));
}

TEST(CriticalSectionLock, KeepsItsSectionAliveAndUnlocksIt)
{
    auto section = makeSection();
    {
        const CriticalSectionLock lock(section);
        EXPECT_EQ(section.useCount(), 2);
        EXPECT_FALSE(anotherThreadCanLock(*section));
    }
    EXPECT_EQ(section.useCount(), 1);
    EXPECT_TRUE(anotherThreadCanLock(*section));
}

#ifdef OS_CHECK_LOCK_RANKS

namespace {

using OSInternal::LockRank;

// Takes two locks one inside the other. @return what that prints
std::string printedBy(LockRank outerRank, LockRank innerRank)
{
    const auto outer = makeSection();
    const auto inner = makeSection();
    OSInternal::setLockRank(*outer, outerRank);
    OSInternal::setLockRank(*inner, innerRank);
    return outputOf([&] {
        const CriticalSectionLock holdOuter(outer);
        const CriticalSectionLock holdInner(inner);
        const CriticalSectionLock again(outer);
    });
}

} // namespace

TEST(LockRank, AcceptsTheOrdersOfTheTable)
{
    constexpr std::pair<LockRank, LockRank> kOrders[] = {
        {LockRank::eExecution, LockRank::eQueue},
        {LockRank::eExecution, LockRank::eGL},
        {LockRank::eGL, LockRank::eTextureCache},
        {LockRank::ePool, LockRank::eQueue},
        {LockRank::eHeapBin, LockRank::eHeapVirtualMemory},
        {LockRank::eSettings, LockRank::eHeapBin},
        {LockRank::eNone, LockRank::eExecution},
        {LockRank::eLargeObject, LockRank::eNone},
    };
    for (const auto& [outer, inner] : kOrders)
        EXPECT_EQ(printedBy(outer, inner), "");
}

TEST(LockRank, ReportsAViolationOncePerPair)
{
    EXPECT_EQ(printedBy(LockRank::eQueue, LockRank::eExecution),
              "lock order: execution lock taken while holding queue lock\n");
    EXPECT_EQ(printedBy(LockRank::eQueue, LockRank::eExecution), "");
    EXPECT_EQ(printedBy(LockRank::eTextureCache, LockRank::eGL),
              "lock order: GL lock taken while holding texture cache lock\n");
    EXPECT_EQ(printedBy(LockRank::eFile, LockRank::eSettings),
              "lock order: settings lock taken while holding file lock\n");
}

TEST(LockRank, AllowsTryingWithoutWaitingAndForgetsWhatWasUnlocked)
{
    const auto queue = makeSection();
    const auto gl = makeSection();
    OSInternal::setLockRank(*queue, LockRank::eQueue);
    OSInternal::setLockRank(*gl, LockRank::eGL);
    const std::string printed = outputOf([&] {
        queue->lock();
        EXPECT_TRUE(gl->lockIfNotLocked());
        queue->unlock();
        gl->unlock();
        const CriticalSectionLock lock(gl);
    });
    EXPECT_EQ(printed, "");
}

#endif
