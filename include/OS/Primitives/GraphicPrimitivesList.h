#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Painting/iRegion.h>
#include <OS/Primitives/AlphaRectDescription.h>
#include <OS/Primitives/BezierCurveDescription.h>
#include <OS/Primitives/EllipseDescription.h>
#include <OS/Primitives/ImageDescription.h>
#include <OS/Primitives/ImageDescriptionEx.h>
#include <OS/Primitives/LineDescription.h>
#include <OS/Primitives/RectDescription.h>
#include <OS/Primitives/TextDescription.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

/// A recording of drawing calls, replayed in order into a processor as often as wanted.
///
/// Each call of push_back is one batch: descriptions of one type and the clip region that held for
/// them. Batches are never merged. A list only grows; releasing it releases its batches in order.
///
/// Always held through Tq::Ptr. No lock: one thread fills it, then one replays it at a time, never
/// both.
class OS_API GraphicPrimitivesList : public virtual iObject
{
public:
    /// What a list is replayed into: one call for each batch, with the descriptions one after
    /// another, their number (0 too) and the region recorded with them, which may be null.
    class iPrimitivesProcessor
    {
    public:
        using Clip = Tq::Ptr<iRegion>;

        virtual void process(const RectDescription* descs, unsigned int count,
                             const Clip& clip) = 0;
        virtual void process(const EllipseDescription* descs, unsigned int count,
                             const Clip& clip) = 0;
        virtual void process(const LineDescription* descs, unsigned int count,
                             const Clip& clip) = 0;
        virtual void process(const TextDescription* descs, unsigned int count,
                             const Clip& clip) = 0;
        virtual void process(const AlphaRectDescription* descs, unsigned int count,
                             const Clip& clip) = 0;
        virtual void process(const BezierCurveDescription* descs, unsigned int count,
                             const Clip& clip) = 0;
        virtual void process(const ImageDescription* descs, unsigned int count,
                             const Clip& clip) = 0;
        virtual void process(const ImageDescriptionEx* descs, unsigned int count,
                             const Clip& clip) = 0;

    protected:
        ~iPrimitivesProcessor() = default;
    };

    /// One batch. May be held through Tq::Ptr beyond the life of its list.
    class OS_API iPrimitiveDescHolder : public virtual iObject
    {
    public:
        ~iPrimitiveDescHolder() override = default;
        /// Makes the one call of the processor that takes this batch's type.
        virtual void process(iPrimitivesProcessor& processor) const = 0;
        /// The smallest rectangle around all descriptions; all zero when there are none.
        virtual Tq::Rectangle<int> getBounds() const = 0;
    };

    /// A batch of one type. Lives in memory of its list, its array right behind it.
    template <class T>
    class PrimitiveDescHolder;

    GraphicPrimitivesList() = default;
    GraphicPrimitivesList(const GraphicPrimitivesList&) = delete;
    GraphicPrimitivesList& operator=(const GraphicPrimitivesList&) = delete;
    ~GraphicPrimitivesList() override;

    /// Appends one batch: a copy of every field of each description, and a share of the region.
    ///
    /// @param descs read during the call and not kept; may be null when count is 0
    /// @param count 0 records an empty batch
    /// @throw std::bad_alloc when there is no memory: nothing is appended then and every share is
    /// given back
    template <class T>
    void push_back(const T* descs, unsigned int count, const Tq::Ptr<iRegion>& clipRegion);

    bool empty() const { return first_ == nullptr; }

    /// Calls `visit` with each batch, a `const iPrimitiveDescHolder&`, in the order of recording.
    template <class Visitor>
    void forEach(Visitor&& visit) const
    {
        for (const Entry* entry = first_; entry; entry = entry->next)
            visit(static_cast<const iPrimitiveDescHolder&>(*entry->holder));
    }

    /// Passes every batch to a processor, in the order of recording. The list stays as it is.
    void process(iPrimitivesProcessor& processor) const
    {
        for (const Entry* entry = first_; entry; entry = entry->next)
            entry->holder->process(processor);
    }

private:
    /// A piece of memory that batches are laid into one after another.
    struct Chunk
    {
        Chunk* next;
        std::size_t size; ///< bytes, this header included
        std::size_t used;
        int owners; ///< the list, and every batch that outlives it; changed atomically

        static void release(Chunk* chunk)
        {
            if (__atomic_sub_fetch(&chunk->owners, 1, __ATOMIC_ACQ_REL) == 0)
                Tq::detail::stringHeap()->deAlloc(chunk);
        }
    };
    /// What stands before each batch.
    struct Entry
    {
        Entry* next;
        iPrimitiveDescHolder* holder;
        Chunk* chunk;
    };

    static constexpr std::size_t kFirstChunkBytes = 2 * 1024;
    static constexpr std::size_t kLargestChunkBytes = 64 * 1024;
    static constexpr std::size_t kAlignment = alignof(std::max_align_t) / 2;

    static constexpr std::size_t aligned(std::size_t bytes)
    {
        return (bytes + kAlignment - 1) & ~(kAlignment - 1);
    }

    Chunk* chunkFor(std::size_t bytes)
    {
        if (current_ && current_->size - current_->used >= bytes)
            return current_;
        return addChunk(bytes);
    }
    Chunk* addChunk(std::size_t bytes);

    Entry* first_ = nullptr;
    Entry* last_ = nullptr;
    Chunk* chunks_ = nullptr;  ///< all of them, in no order that matters
    Chunk* current_ = nullptr; ///< the one with room
    std::size_t nextChunkBytes_ = kFirstChunkBytes;
};

template <class T>
class GraphicPrimitivesList::PrimitiveDescHolder final : public iPrimitiveDescHolder
{
public:
    PrimitiveDescHolder(const PrimitiveDescHolder&) = delete;
    PrimitiveDescHolder& operator=(const PrimitiveDescHolder&) = delete;

    // Qualified, so that no description is destroyed through its virtual table: the type is known.
    ~PrimitiveDescHolder() override
    {
        for (unsigned int i = 0; i < count_; ++i)
            descs_[i].T::~T();
    }

    void process(iPrimitivesProcessor& processor) const override
    {
        processor.process(descs_, count_, clipRegion_);
    }

    Tq::Rectangle<int> getBounds() const override
    {
        if (count_ == 0)
            return {};
        Tq::Rectangle<int> bounds = descs_[0].getBounds();
        for (unsigned int i = 0; i < count_; ++i)
            bounds = bounds.united(descs_[i].getBounds());
        return bounds;
    }

    // Reached when a batch outlives its list: gives back its share of the chunk that it lies in.
    static void operator delete(void* holder)
    {
        Chunk::release((static_cast<Entry*>(holder) - 1)->chunk);
    }

private:
    friend class GraphicPrimitivesList;

    PrimitiveDescHolder(T* place, const T* descs, unsigned int count,
                        const Tq::Ptr<iRegion>& clipRegion)
        : descs_(place), count_(count), clipRegion_(clipRegion)
    {
        std::uninitialized_copy_n(descs, count, place);
        *refCount() = 1; // the list's
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {} // a constructor that threw took nothing

    T* descs_;
    unsigned int count_;
    Tq::Ptr<iRegion> clipRegion_;
};

template <class T>
void GraphicPrimitivesList::push_back(const T* descs, unsigned int count,
                                      const Tq::Ptr<iRegion>& clipRegion)
{
    using Holder = PrimitiveDescHolder<T>;
    static_assert(alignof(T) <= kAlignment && alignof(Holder) <= kAlignment);
    constexpr std::size_t kHead = aligned(sizeof(Entry));
    static_assert(kHead == sizeof(Entry), "a batch finds its entry right before it");
    constexpr std::size_t kArrayAt = kHead + aligned(sizeof(Holder));

    const std::size_t bytes = kArrayAt + aligned(std::size_t(count) * sizeof(T));
    Chunk* chunk = chunkFor(bytes);
    char* place = reinterpret_cast<char*>(chunk) + chunk->used;
    auto* holder = new (place + kHead)
        Holder(reinterpret_cast<T*>(place + kArrayAt), descs, count, clipRegion);

    Entry* entry = new (place) Entry{nullptr, holder, chunk};
    chunk->used += bytes;
    (last_ ? last_->next : first_) = entry;
    last_ = entry;
}

inline GraphicPrimitivesList::Chunk* GraphicPrimitivesList::addChunk(std::size_t bytes)
{
    constexpr std::size_t kHeader = aligned(sizeof(Chunk));
    const bool alone = bytes > nextChunkBytes_ / 2; // and the chunk with room goes on being filled
    const std::size_t size = alone ? kHeader + bytes : nextChunkBytes_;
    void* memory = Tq::detail::stringHeap()->alloc(size);
    if (!memory)
        throw std::bad_alloc();
    chunks_ = new (memory) Chunk{chunks_, size, kHeader, 1};
    if (!alone || !current_)
        current_ = chunks_;
    if (!alone)
        nextChunkBytes_ = std::min(nextChunkBytes_ * 2, kLargestChunkBytes);
    return chunks_;
}
