#pragma once

#include "OS/Shared/ForkGuarded.h"
#include "OS/Shared/GuardedArea.h"
#include <OS/Shared/Heap.h>
#include <OS/Shared/ProcessHeapAllocator.h>

#include <atomic>
#include <mutex>
#include <unordered_set>

namespace Tq {

/// A heap that catches overruns, accesses to released blocks and wrong releases, at the price of a
/// page or more and several system calls for every block: for hunting such faults, not for work.
///
/// A block ends at a guard page and begins behind a canary (see GuardedArea), and a released block
/// is protected for as long as the quarantine has room. So an access behind a block, or to a
/// released one, is a fault at once; a write into the up to 15 bytes before the guard page, or in
/// front of the block, is found by deAlloc, reAlloc or check(). Every report names the block, its
/// size, the stack that allocated it and, once it is freed, the stack that did: on standard output,
/// but that of a fault, which goes to standard error before the fault takes its usual course.
///
/// In one process at most 16,000 live blocks of such heaps are guarded; further ones come from the
/// C allocator, as the heap then says once.
///
/// How the root's heap hands its blocks to one: the environment variable VANTOR_DEBUG_HEAP=1, with
/// VANTOR_DEBUG_HEAP_QUARANTINE_MB (default 64). How createHeap() comes to make one: the global
/// setting "DebugHeap" = "1", with "DebugHeapQuarantineMb" (default 64).
///
/// Any thread. One lock, a leaf: under it only pages and the C allocator are touched. It is held
/// around fork. Nothing here throws.
class DebugHeap final : public Heap, private ForkGuarded
{
public:
    enum class Unknown
    {
        eReport, ///< a pointer that this heap did not hand out is an error
        eRelease ///< it is the C allocator's: blocks from before this heap, or aligned ones
    };

    static constexpr unsigned kDefaultQuarantineMb = 64;
    /// @param text a decimal number up to 65536; null or anything else gives the default
    static unsigned quarantineMbFrom(const char* text);

    /// Allocates nothing through operator new, nor asks for the root.
    explicit DebugHeap(unsigned quarantineMb = kDefaultQuarantineMb,
                       Unknown unknown = Unknown::eReport);
    ~DebugHeap() override;

    void* alloc(std::size_t size) override;
    /// Always moves a guarded block, so that a stale pointer shows. Size 0 releases the block, and
    /// the answer is null, as the C allocator does it.
    /// @return null, too, for a pointer that is no block, which is reported
    void* reAlloc(void* block, std::size_t size) override;
    /// Releases a block. A pointer that is freed already, that lies inside a block, or that is none
    /// is reported, and nothing happens to it.
    void deAlloc(void* block) override;
    /// As Heap's; then the leaks.
    void report() override;
    /// @return whether it is a live block. Of a pointer outside the guarded pages a heap with
    /// Unknown::eRelease knows nothing, and answers true.
    bool isPointerValid(const void* block) const override;

    /// Prints the live guarded blocks, those of one stack together, most bytes first.
    void reportLeaks() const;
    /// Looks for damage around every live block and reports each once. @return how many have it
    std::size_t check();

private:
    enum class Verdict
    {
        eGood,
        eDamaged, // the block is good, what surrounds it is not
        eFreed,
        eInside,
        eNoBlock
    };
    struct Finding
    {
        Verdict verdict = Verdict::eGood;
        BlockFacts facts;
        GuardedArea::Damage damage;

        bool isBlock() const { return verdict == Verdict::eGood || verdict == Verdict::eDamaged; }
        explicit operator bool() const { return verdict != Verdict::eGood; } // to be reported
    };

    void lockForFork() override;
    void unlockAfterFork() override;
    void renewInChild() override;

    void* allocAny(std::size_t size, const CallStack& stack);
    void* allocGuarded(std::size_t size, const CallStack& stack);
    void* allocPlain(std::size_t size);
    void* reAllocGuarded(void* block, std::size_t size, const CallStack& stack);
    void* reAllocPlain(void* block, std::size_t size, const CallStack& stack);
    Finding releaseGuarded(void* block, const CallStack& stack);
    void releasePlain(void* block, const CallStack& stack);
    Finding judge(const void* block) const;
    static void print(const void* block, const Finding& finding, const CallStack& stack);

    mutable std::mutex lock_; // the members that follow, GuardedArea's lock-free part aside
    GuardedArea area_;
    std::unordered_set<void*, std::hash<void*>, std::equal_to<>, ProcessHeapAllocator<void*>>
        plain_; // with Unknown::eReport: the live blocks from the C allocator
    std::atomic<bool> saidNotGuarded_{false};
    const Unknown unknown_;
};

} // namespace Tq
