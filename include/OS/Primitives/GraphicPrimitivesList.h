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
#include <limits>
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
        for (const Chunk* chunk = first_; chunk; chunk = chunk->next)
            for (Entry* entry = chunk->begin(); entry != chunk->end(); entry = entry->next())
                visit(static_cast<const iPrimitiveDescHolder&>(*entry->holder()));
    }

    /// Passes every batch to a processor, in the order of recording. The list stays as it is.
    void process(iPrimitivesProcessor& processor) const
    {
        forEach([&](const iPrimitiveDescHolder& batch) { batch.process(processor); });
    }

private:
    template <class T>
    static constexpr bool kOwnsNothing =
        std::is_same_v<T, RectDescription> || std::is_same_v<T, AlphaRectDescription> ||
        std::is_same_v<T, EllipseDescription> || std::is_same_v<T, LineDescription> ||
        std::is_same_v<T, BezierCurveDescription>;

    /// All batches are laid out in words.
    static constexpr std::size_t kWord = 8;
    static constexpr std::size_t words(std::size_t bytes) { return (bytes + kWord - 1) / kWord; }

    struct Chunk;

    /// What stands before each batch: how to get to the next one, and to the memory that both lie
    /// in.
    struct Entry
    {
        std::uint32_t words;   ///< this entry, its batch and the batch's array
        std::uint32_t atWords; ///< from the chunk's beginning

        Entry* next()
        {
            return reinterpret_cast<Entry*>(reinterpret_cast<char*>(this) + words * kWord);
        }
        // Every holder begins with this base: its only one that is not virtual.
        iPrimitiveDescHolder* holder() { return reinterpret_cast<iPrimitiveDescHolder*>(this + 1); }
        Chunk* chunk()
        {
            return reinterpret_cast<Chunk*>(reinterpret_cast<char*>(this) - atWords * kWord);
        }
    };

    /// A piece of memory that batches are laid into one after another.
    struct Chunk
    {
        Chunk* next;
        std::size_t sizeWords; ///< this header included
        std::size_t usedWords;
        int owners; ///< the list, and every batch that outlives it; changed atomically

        char* at(std::size_t word) const
        {
            return reinterpret_cast<char*>(const_cast<Chunk*>(this)) + word * kWord;
        }
        Entry* begin() const { return reinterpret_cast<Entry*>(at(sizeof(Chunk) / kWord)); }
        Entry* end() const { return reinterpret_cast<Entry*>(at(usedWords)); }

        static void release(Chunk* chunk)
        {
            if (__atomic_sub_fetch(&chunk->owners, 1, __ATOMIC_ACQ_REL) == 0)
                Tq::detail::stringHeap()->deAlloc(chunk);
        }
    };
    static_assert(sizeof(Entry) == kWord && sizeof(Chunk) % kWord == 0);

    static constexpr std::size_t kFirstChunkBytes = 2 * 1024;
    static constexpr std::size_t kLargestChunkBytes = 64 * 1024;

    void addChunk(std::size_t neededWords);

    Chunk* first_ = nullptr;
    Chunk* last_ = nullptr; ///< the one with room
    std::size_t nextChunkBytes_ = kFirstChunkBytes;
};

template <class T>
class GraphicPrimitivesList::PrimitiveDescHolder final : public iPrimitiveDescHolder
{
public:
    PrimitiveDescHolder(const PrimitiveDescHolder&) = delete;
    PrimitiveDescHolder& operator=(const PrimitiveDescHolder&) = delete;

    // Descriptions that own nothing just end. The others are destroyed by their known type, not
    // through their virtual tables.
    ~PrimitiveDescHolder() override
    {
        if constexpr (kOwnsNothing<T>)
            return;
        for (unsigned int i = 0; i < count_; ++i)
            descs()[i].T::~T();
    }

    void process(iPrimitivesProcessor& processor) const override
    {
        processor.process(descs(), count_, clipRegion_);
    }

    Tq::Rectangle<int> getBounds() const override
    {
        if (count_ == 0)
            return {};
        Tq::Rectangle<int> bounds = descs()[0].getBounds();
        for (unsigned int i = 0; i < count_; ++i)
            bounds = bounds.united(descs()[i].getBounds());
        return bounds;
    }

    // Reached when a batch outlives its list: gives back its share of the chunk that it lies in.
    static void operator delete(void* holder)
    {
        Chunk::release((static_cast<Entry*>(holder) - 1)->chunk());
    }

private:
    friend class GraphicPrimitivesList;

    PrimitiveDescHolder(const T* descs, unsigned int count, const Tq::Ptr<iRegion>& clipRegion)
        : clipRegion_(clipRegion), count_(count)
    {
        std::uninitialized_copy_n(descs, count, this->descs());
        *refCount() = 1; // the list's
    }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {} // a constructor that threw took nothing

    const T* descs() const { return reinterpret_cast<const T*>(this + 1); }
    T* descs() { return reinterpret_cast<T*>(this + 1); }

    Tq::Ptr<iRegion> clipRegion_;
    unsigned int count_;
};

template <class T>
void GraphicPrimitivesList::push_back(const T* descs, unsigned int count,
                                      const Tq::Ptr<iRegion>& clipRegion)
{
    using Holder = PrimitiveDescHolder<T>;
    static_assert(alignof(T) <= kWord && alignof(Holder) <= kWord && sizeof(Holder) % kWord == 0);

    const std::size_t needed =
        words(sizeof(Entry) + sizeof(Holder) + std::size_t(count) * sizeof(T));
    if (!last_ || last_->sizeWords - last_->usedWords < needed)
        addChunk(needed);
    Chunk* chunk = last_;
    char* place = chunk->at(chunk->usedWords);
    new (place + sizeof(Entry)) Holder(descs, count, clipRegion);
    new (place)
        Entry{static_cast<std::uint32_t>(needed), static_cast<std::uint32_t>(chunk->usedWords)};
    chunk->usedWords += needed;
}

inline void GraphicPrimitivesList::addChunk(std::size_t neededWords)
{
    // A long batch brings some room for short ones behind it.
    constexpr std::size_t kHeader = sizeof(Chunk) / kWord;
    const std::size_t usual = nextChunkBytes_ / kWord;
    const std::size_t size = std::max(usual, kHeader + neededWords + usual / 4);
    if (size > std::numeric_limits<std::uint32_t>::max())
        throw std::bad_alloc();
    void* memory = Tq::detail::stringHeap()->alloc(size * kWord);
    if (!memory)
        throw std::bad_alloc();
    auto* chunk = new (memory) Chunk{nullptr, size, kHeader, 1};
    (last_ ? last_->next : first_) = chunk;
    last_ = chunk;
    nextChunkBytes_ = std::min(nextChunkBytes_ * 2, kLargestChunkBytes);
}
