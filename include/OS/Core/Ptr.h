#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/InternalRefCount.h>
#include <OS/Core/iThreadAtomics.h>

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

class QImage;
class QWidget;

namespace Tq {

namespace detail {

/// OS()->threadAtomics(), for the inline code below.
OS_API iThreadAtomics* threadAtomics();

/// The atomics, asked for once per module: the root never moves and is never destroyed.
/// Constant-initialised, so it serves static constructors and `operator new` as well.
inline iThreadAtomics* cachedAtomics = nullptr;

[[gnu::always_inline]] inline iThreadAtomics* atomics()
{
    iThreadAtomics* found = __atomic_load_n(&cachedAtomics, __ATOMIC_RELAXED);
    if (__builtin_expect(found == nullptr, 0)) {
        found = threadAtomics();
        __atomic_store_n(&cachedAtomics, found, __ATOMIC_RELAXED);
    }
    return found;
}

#ifdef OS_BUILDING_LIBRARY
// Inside the library the implementation is known: the same locked instruction, without the hop.
[[gnu::always_inline]] inline int increment(volatile int* count)
{
    return __atomic_add_fetch(count, 1, __ATOMIC_SEQ_CST);
}
[[gnu::always_inline]] inline int decrement(volatile int* count)
{
    return __atomic_sub_fetch(count, 1, __ATOMIC_SEQ_CST);
}
#else
[[gnu::always_inline]] inline int increment(volatile int* count)
{
    return atomics()->safeInc(count);
}
[[gnu::always_inline]] inline int decrement(volatile int* count)
{
    return atomics()->safeDec(count);
}
#endif

} // namespace detail

/// Destroys an object with `delete`.
struct DtorTraits
{
    template <class T>
    static void destroy(T* object)
    {
        delete object;
    }
};

/// The count lives in the object: T has `volatile int* refCount() const`.
struct InternalRefCountTraits
{
    template <class T>
    static volatile int* makeCount(T* object)
    {
        return object->refCount();
    }
    static void freeCount(volatile int*) {}
};

/// The count is a separate integer from the global allocator, for types that are no iObjects.
/// It is freed before the object is destroyed. Make one pointer from a raw pointer and copy that:
/// a second one would start a second count.
struct ExternalRefCountTraits
{
    template <class T>
    static volatile int* makeCount(T*)
    {
        return new int(0);
    }
    static void freeCount(volatile int* count) { delete count; }
};

/// Which policy Tq::Ptr<T> takes when none is named.
template <class T>
struct RefCountTraitsOf
{
    using Type = InternalRefCountTraits;
};
template <>
struct RefCountTraitsOf<unsigned char>
{
    using Type = ExternalRefCountTraits;
};
template <>
struct RefCountTraitsOf<unsigned int>
{
    using Type = ExternalRefCountTraits;
};
template <>
struct RefCountTraitsOf<QImage>
{
    using Type = ExternalRefCountTraits;
};
template <>
struct RefCountTraitsOf<QWidget>
{
    using Type = ExternalRefCountTraits;
};

/// The shared-ownership pointer of every interface: two words, the count and the object, both null
/// when empty.
///
/// Counts change atomically, so copies of one pointer may be made and released on several threads
/// at once; one Ptr object itself is not guarded. The object is destroyed on the thread that
/// releases the last copy.
template <class T, class Dtor = DtorTraits, class Traits = typename RefCountTraitsOf<T>::Type>
class Ptr
{
public:
    Ptr() noexcept = default;
    Ptr(std::nullptr_t) noexcept {}

    /// Takes a share of an object; null gives an empty pointer.
    Ptr(T* object)
    {
        if (object) {
            if constexpr (std::is_same_v<Traits, ExternalRefCountTraits>) {
                // Nobody else knows this count yet.
                count_ = makeCountOrDestroy(object);
                object_ = object;
                *count_ = 1;
            } else {
                count_ = Traits::makeCount(object);
                object_ = object;
                detail::increment(count_);
            }
        }
    }

    Ptr(const Ptr& other) noexcept : count_(other.count_), object_(other.object_) { incRef(); }
    Ptr(Ptr&& other) noexcept
        : count_(std::exchange(other.count_, nullptr)),
          object_(std::exchange(other.object_, nullptr))
    {
    }

    /// Converts to a pointer to a base.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ptr(const Ptr<U, Dtor, Traits>& other) noexcept : count_(other.count_), object_(other.object_)
    {
        incRef();
    }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ptr(Ptr<U, Dtor, Traits>&& other) noexcept
        : count_(std::exchange(other.count_, nullptr)),
          object_(std::exchange(other.object_, nullptr))
    {
    }

    ~Ptr() { decRef(); }

    /// The new object is counted before the old one is released.
    Ptr& operator=(const Ptr& other) noexcept
    {
        if (this != &other)
            Ptr(other).swap(*this);
        return *this;
    }
    Ptr& operator=(Ptr&& other) noexcept
    {
        if (this != &other)
            Ptr(std::move(other)).swap(*this);
        return *this;
    }

    /// Takes over an object whose internal count already includes this pointer: a fresh object with
    /// its count set to 1 by its maker, which saves the atomic operation.
    static Ptr adoptCounted(T* object) noexcept
    {
        Ptr result;
        result.count_ = Traits::makeCount(object);
        result.object_ = object;
        return result;
    }

    /// The reverse of adoptCounted: lets go of the object without changing its count, and empties
    /// the pointer.
    T* detachCounted() noexcept
    {
        count_ = nullptr;
        return std::exchange(object_, nullptr);
    }

    T* get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    std::add_lvalue_reference_t<T> operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    void reset() noexcept { Ptr().swap(*this); }
    void swap(Ptr& other) noexcept
    {
        std::swap(count_, other.count_);
        std::swap(object_, other.object_);
    }

    /// A share of the same object seen as another class, or empty when it is none.
    template <class U>
    Ptr<U, Dtor, Traits> dynamicCast() const noexcept
    {
        return adopt<U>(dynamic_cast<U*>(object_));
    }

    /// How many pointers share the object: 0 when empty. A hint as soon as other threads hold one.
    int useCount() const noexcept { return count_ ? __atomic_load_n(count_, __ATOMIC_ACQUIRE) : 0; }

    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.object_ == b.object_; }
    friend bool operator==(const Ptr& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }
    friend bool operator<(const Ptr& a, const Ptr& b) noexcept
    {
        return std::less<T*>()(a.object_, b.object_);
    }

private:
    template <class, class, class>
    friend class Ptr;

    template <class U>
    Ptr<U, Dtor, Traits> adopt(U* object) const noexcept
    {
        Ptr<U, Dtor, Traits> result;
        if (object) {
            result.count_ = count_;
            result.object_ = object;
            result.incRef();
        }
        return result;
    }

    static volatile int* makeCountOrDestroy(T* object)
    {
        try {
            return Traits::makeCount(object);
        } catch (...) {
            Dtor::destroy(object);
            throw;
        }
    }

    void incRef() noexcept
    {
        if (object_)
            detail::increment(count_);
    }

    void decRef() noexcept
    {
        if (object_ && detail::decrement(count_) == 0) {
            Traits::freeCount(count_);
            Dtor::destroy(object_);
            count_ = nullptr;
            object_ = nullptr;
        }
    }

    volatile int* count_ = nullptr;
    T* object_ = nullptr;
};

} // namespace Tq

template <class T, class Dtor, class Traits>
struct std::hash<Tq::Ptr<T, Dtor, Traits>>
{
    std::size_t operator()(const Tq::Ptr<T, Dtor, Traits>& pointer) const noexcept
    {
        return std::hash<T*>()(pointer.get());
    }
};
