#include "OS/Shared/TqHeap_Debug.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Shared/DebugHeapReport.h"
#include "OS/Shared/HeapFaultHandler.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace Tq {

namespace {

// Set while this thread takes a stack or writes a report: what it allocates then is the C
// allocator's.
thread_local bool busy = false;

class Busy
{
public:
    Busy() : wasBusy_(busy) { busy = true; }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    ~Busy() { busy = wasBusy_; }
    bool nested() const { return wasBusy_; }

private:
    const bool wasBusy_;
};

} // namespace

unsigned DebugHeap::quarantineMbFrom(const char* text)
{
    constexpr unsigned kMost = 65'536;
    unsigned result = 0;
    const char* end = text ? text + std::strlen(text) : nullptr;
    const auto parsed = std::from_chars(text, end, result);
    return text && parsed.ec == std::errc() && parsed.ptr == end && result <= kMost
               ? result
               : kDefaultQuarantineMb;
}

DebugHeap::DebugHeap(unsigned quarantineMb, Unknown unknown)
    : area_(std::size_t(quarantineMb) << 20), unknown_(unknown)
{
    const Busy scope;
    CallStack::prepare();
    HeapFaultHandler::add(&area_);
    enrol();
}

DebugHeap::~DebugHeap()
{
    withdraw();
    HeapFaultHandler::remove(&area_);
    for (void* block : plain_)
        std::free(block);
}

void DebugHeap::lockForFork()
{
    lock_.lock();
}

void DebugHeap::unlockAfterFork()
{
    lock_.unlock();
}

void DebugHeap::renewInChild()
{
    lock_.unlock(); // the thread that took it is the one that goes on
}

void* DebugHeap::alloc(std::size_t size)
{
    const Busy scope;
    if (scope.nested())
        return allocPlain(size);
    CallStack stack;
    stack.capture();
    return allocAny(size, stack);
}

void* DebugHeap::allocAny(std::size_t size, const CallStack& stack)
{
    if (void* block = allocGuarded(size, stack))
        return block;
    void* block = allocPlain(size);
    if (block && !saidNotGuarded_.exchange(true, std::memory_order_relaxed))
        OSInternal::printLine("debug heap: there are %u live blocks, or no pages are left; further "
                              "blocks are not guarded\n",
                              static_cast<unsigned>(GuardedArea::kMaxLiveBlocks));
    return block;
}

void* DebugHeap::allocGuarded(std::size_t size, const CallStack& stack)
{
    const std::lock_guard guard(lock_);
    const GuardedBlock* block = area_.allocate(size, stack);
    return block ? block->start : nullptr;
}

void* DebugHeap::allocPlain(std::size_t size)
{
    void* block = std::malloc(size);
    if (!block || unknown_ == Unknown::eRelease)
        return block;
    const std::lock_guard guard(lock_);
    try {
        plain_.insert(block);
        return block;
    } catch (const std::bad_alloc&) {
        std::free(block);
        return nullptr;
    }
}

void DebugHeap::deAlloc(void* block)
{
    if (!block)
        return;
    const Busy scope;
    CallStack stack;
    if (!scope.nested())
        stack.capture();
    if (!area_.contains(block))
        releasePlain(block, stack);
    else if (const Finding finding = releaseGuarded(block, stack))
        print(block, finding, stack);
}

void* DebugHeap::reAlloc(void* block, std::size_t size)
{
    if (!block)
        return alloc(size);
    if (size == 0) {
        deAlloc(block);
        return nullptr;
    }
    const Busy scope;
    CallStack stack;
    if (!scope.nested())
        stack.capture();
    return area_.contains(block) ? reAllocGuarded(block, size, stack)
                                 : reAllocPlain(block, size, stack);
}

void* DebugHeap::reAllocGuarded(void* block, std::size_t size, const CallStack& stack)
{
    Finding finding = [&] {
        const std::lock_guard guard(lock_);
        return judge(block);
    }();
    void* moved = nullptr;
    if (finding.isBlock()) {
        moved = allocAny(size, stack);
        if (!moved)
            return nullptr;
        std::memcpy(moved, block, std::min(size, finding.facts.size));
        finding = releaseGuarded(block, stack);
    }
    if (finding)
        print(block, finding, stack);
    return moved;
}

DebugHeap::Finding DebugHeap::releaseGuarded(void* block, const CallStack& stack)
{
    const std::lock_guard guard(lock_);
    const Finding finding = judge(block);
    if (finding.isBlock())
        area_.release(*area_.find(block), stack);
    return finding;
}

void* DebugHeap::reAllocPlain(void* block, std::size_t size, const CallStack& stack)
{
    if (unknown_ == Unknown::eRelease)
        return std::realloc(block, size);
    {
        const std::lock_guard guard(lock_);
        if (auto known = plain_.extract(block)) {
            void* moved = std::realloc(block, size);
            if (moved)
                known.value() = moved;
            plain_.insert(std::move(known));
            return moved;
        }
    }
    print(block, {Verdict::eNoBlock, {}, {}}, stack);
    return nullptr;
}

void DebugHeap::releasePlain(void* block, const CallStack& stack)
{
    const bool known = unknown_ == Unknown::eRelease || [&] {
        const std::lock_guard guard(lock_);
        return plain_.erase(block) > 0;
    }();
    if (known)
        std::free(block);
    else
        print(block, {Verdict::eNoBlock, {}, {}}, stack);
}

// With the lock held.
DebugHeap::Finding DebugHeap::judge(const void* block) const
{
    const GuardedBlock* found = area_.find(block);
    if (!found)
        return {Verdict::eNoBlock, {}, {}};
    if (block != found->start)
        return {Verdict::eInside, *found, {}};
    if (found->state.load(std::memory_order_relaxed) == GuardedBlock::State::eFreed)
        return {Verdict::eFreed, *found, {}};
    const GuardedArea::Damage damage = area_.damageOf(*found);
    return {damage ? Verdict::eDamaged : Verdict::eGood, *found, damage};
}

bool DebugHeap::isPointerValid(const void* block) const
{
    const std::lock_guard guard(lock_);
    if (area_.contains(block))
        return judge(block).isBlock();
    return unknown_ == Unknown::eRelease || plain_.contains(const_cast<void*>(block));
}

std::size_t DebugHeap::check()
{
    const Busy scope;
    CallStack stack;
    stack.capture();
    std::vector<Finding> damaged;
    {
        const std::lock_guard guard(lock_);
        area_.forEachLive([&](const GuardedBlock& block) {
            if (const GuardedArea::Damage damage = area_.damageOf(block)) {
                damaged.push_back({Verdict::eDamaged, block, damage});
                area_.fillPattern(block);
            }
        });
    }
    for (const Finding& finding : damaged)
        print(finding.facts.start, finding, stack);
    return damaged.size();
}

void DebugHeap::reportLeaks() const
{
    const Busy scope;
    std::vector<BlockFacts> blocks;
    std::size_t notGuarded = 0;
    {
        const std::lock_guard guard(lock_);
        area_.forEachLive([&](const GuardedBlock& block) { blocks.push_back(block); });
        notGuarded = plain_.size();
    }
    Tq::reportLeaks(blocks, notGuarded);
}

void DebugHeap::report()
{
    Heap::report();
    reportLeaks();
}

void DebugHeap::print(const void* block, const Finding& finding, const CallStack& stack)
{
    const BlockFacts& facts = finding.facts;
    DebugHeapReport report;
    switch (finding.verdict) {
    case Verdict::eGood:
        break;
    case Verdict::eDamaged:
        if (finding.damage.before > 0)
            report.line("debug heap: %zu bytes were written before the block of %zu bytes at %p, "
                        "from %zu bytes before it",
                        finding.damage.before, facts.size, block, finding.damage.furthestBefore);
        if (finding.damage.behind > 0)
            report.line("debug heap: %zu bytes were written behind the block of %zu bytes at %p",
                        finding.damage.behind, facts.size, block);
        report.stack("allocated by", facts.allocated);
        report.stack("found by", stack);
        break;
    case Verdict::eFreed:
        report.line("debug heap: the block of %zu bytes at %p is freed twice", facts.size, block);
        report.stack("allocated by", facts.allocated);
        report.stack("freed by", facts.freed);
        report.stack("again by", stack);
        break;
    case Verdict::eInside:
        report.line("debug heap: %p is no block: it lies %td bytes from the start of the block of "
                    "%zu bytes at %p",
                    block, static_cast<const char*>(block) - facts.start, facts.size,
                    static_cast<const void*>(facts.start));
        report.stack("allocated by", facts.allocated);
        report.stack("freed by", stack);
        break;
    case Verdict::eNoBlock:
        report.line("debug heap: %p is no block of this heap", block);
        report.stack("freed by", stack);
        break;
    }
}

} // namespace Tq
