#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Shared/iHeap.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Tq::detail {

/// OS()->heap(), for the inline code below.
OS_API iHeap* heap();

/// The heap, asked for once per module. Constant-initialised, like cachedAtomics.
inline iHeap* cachedHeap = nullptr;

[[gnu::always_inline]] inline iHeap* stringHeap()
{
    iHeap* found = __atomic_load_n(&cachedHeap, __ATOMIC_RELAXED);
    if (__builtin_expect(found == nullptr, 0)) {
        found = heap();
        __atomic_store_n(&cachedHeap, found, __ATOMIC_RELAXED);
    }
    return found;
}

/// Simple case folding of one Unicode code point, the same in every locale.
OS_API wchar_t foldCase(wchar_t c);
OS_API wchar_t upperCase(wchar_t c);

inline char foldCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
inline char upperCase(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace Tq::detail

/// The string of every interface: one shared, counted record, null when empty.
///
/// Copies share the record, so passing strings by value is cheap at any length; a write to a shared
/// record makes a new one first. `char` strings hold bytes (UTF-8 where a text leaves the library),
/// `wchar_t` strings hold Unicode code points. Copies may be used on several threads at once; one
/// string object itself is not guarded. Positions and lengths count characters; the longest string
/// has 2^31 - 1. A longer one throws std::length_error, exhausted memory std::bad_alloc.
template <class C>
class LightweightString
{
public:
    using value_type = C;
    using size_type = std::uint32_t;
    using View = std::basic_string_view<C>;
    using const_iterator = const C*;

    /// "Not found", and "to the end" as a count.
    static constexpr size_type npos = std::numeric_limits<size_type>::max();

    /// The shared record: 24 bytes, then the characters and their terminator.
    struct Impl
    {
        C* chars;
        size_type length;
        size_type capacity; ///< characters, the terminator's place included
        mutable int count;

        volatile int* refCount() const { return &count; }
        /// What `chars` points to, without reading it.
        C* inlineChars() { return reinterpret_cast<C*>(this + 1); }

        struct DtorTraits
        {
            static void destroy(Impl* impl) { Tq::detail::stringHeap()->deAlloc(impl); }
        };
    };
    static_assert(sizeof(Impl) == 24, "the characters follow a header of 24 bytes");

    LightweightString() noexcept = default;
    LightweightString(std::nullptr_t) noexcept {}
    /// A null pointer gives an empty string.
    LightweightString(const C* text) : LightweightString(view(text)) {}
    LightweightString(const C* text, size_type length) : LightweightString(View(text, length)) {}
    LightweightString(size_type count, C c)
    {
        if (count > 0) {
            impl_ = makeRecord(count, Room::eExact);
            std::fill_n(impl_->chars, count, c);
        }
    }
    explicit LightweightString(View text)
    {
        if (!text.empty()) {
            impl_ = makeRecord(text.size(), Room::eExact);
            copyChars(impl_->chars, text.data(), text.size());
        }
    }

    // -- Reading

    size_type size() const noexcept { return impl_ ? impl_->length : 0; }
    size_type length() const noexcept { return size(); }
    bool empty() const noexcept { return size() == 0; }
    /// Characters that the record has room for, the terminator's place included; 0 when empty.
    size_type capacity() const noexcept { return impl_ ? impl_->capacity : 0; }
    /// Never null, always terminated; valid until the string changes.
    const C* c_str() const noexcept { return impl_ ? impl_->inlineChars() : kEmpty; }
    const C* data() const noexcept { return c_str(); }
    const_iterator begin() const noexcept { return c_str(); }
    const_iterator end() const noexcept { return c_str() + size(); }
    /// @param index below size(); size() itself reads the terminator
    C operator[](size_type index) const noexcept { return c_str()[index]; }
    C front() const noexcept { return c_str()[0]; }
    C back() const noexcept { return c_str()[size() - 1]; }
    View view() const noexcept { return View(c_str(), size()); }
    operator View() const noexcept { return view(); }

    /// @return up to `count` characters from `from` on; empty when `from` lies at or behind the end
    LightweightString substr(size_type from, size_type count = npos) const
    {
        if (from >= size())
            return {};
        if (from == 0 && count >= size())
            return *this;
        return LightweightString(view().substr(from, count));
    }

    // -- Searching: positions, or npos

    size_type find(View text, size_type from = 0) const noexcept
    {
        return pos(view().find(text, from));
    }
    size_type find(C c, size_type from = 0) const noexcept { return pos(view().find(c, from)); }
    size_type rfind(View text, size_type from = npos) const noexcept
    {
        return pos(view().rfind(text, wide(from)));
    }
    size_type rfind(C c, size_type from = npos) const noexcept
    {
        return pos(view().rfind(c, wide(from)));
    }
    size_type find_first_of(View set, size_type from = 0) const noexcept
    {
        return pos(view().find_first_of(set, from));
    }
    size_type find_first_of(C c, size_type from = 0) const noexcept { return find(c, from); }
    size_type find_last_of(View set, size_type from = npos) const noexcept
    {
        return pos(view().find_last_of(set, wide(from)));
    }
    size_type find_last_of(C c, size_type from = npos) const noexcept { return rfind(c, from); }
    size_type find_first_not_of(View set, size_type from = 0) const noexcept
    {
        return pos(view().find_first_not_of(set, from));
    }
    size_type find_last_not_of(View set, size_type from = npos) const noexcept
    {
        return pos(view().find_last_not_of(set, wide(from)));
    }
    bool contains(View text) const noexcept { return find(text) != npos; }
    bool contains(C c) const noexcept { return find(c) != npos; }
    bool startsWith(View text) const noexcept { return view().starts_with(text); }
    bool startsWith(C c) const noexcept { return view().starts_with(c); }
    bool endsWith(View text) const noexcept { return view().ends_with(text); }
    bool endsWith(C c) const noexcept { return view().ends_with(c); }

    // -- Comparing: below, at or above 0. Bytes compare unsigned, wide characters by value.

    int compare(View other) const noexcept { return compareChars(view(), other); }
    int compare(const LightweightString& other) const noexcept
    {
        const Impl* mine = impl_.get();
        const Impl* theirs = other.impl_.get();
        if (mine == theirs || !mine || !theirs)
            return mine == theirs ? 0 : compareLengths(size(), other.size());
        const int order =
            compareCommon(begin(), other.begin(), std::min(mine->length, theirs->length));
        return order != 0 ? order : compareLengths(mine->length, theirs->length);
    }
    int compare(const C* other) const noexcept { return compareChars(view(), view(other)); }
    /// With case folded: A to Z in `char` strings, Unicode's simple folding in `wchar_t` strings.
    int compareNoCase(View other) const noexcept
    {
        const View mine = view();
        const std::size_t common = std::min(mine.size(), other.size());
        for (std::size_t i = 0; i < common; ++i) {
            const C a = Tq::detail::foldCase(mine[i]);
            const C b = Tq::detail::foldCase(other[i]);
            if (a != b)
                return std::char_traits<C>::lt(a, b) ? -1 : 1;
        }
        return mine.size() == other.size() ? 0 : mine.size() < other.size() ? -1 : 1;
    }
    bool equalsNoCase(View other) const noexcept
    {
        return size() == other.size() && compareNoCase(other) == 0;
    }

    friend bool operator==(const LightweightString& a, const LightweightString& b) noexcept
    {
        return a.impl_.get() == b.impl_.get() || equal(a.view(), b.view());
    }
    friend bool operator==(const LightweightString& a, const C* b) noexcept
    {
        return equal(a.view(), view(b));
    }
    friend bool operator==(const LightweightString& a, View b) noexcept
    {
        return equal(a.view(), b);
    }
    friend bool operator<(const LightweightString& a, const LightweightString& b) noexcept
    {
        return a.compare(b.view()) < 0;
    }
    friend bool operator>(const LightweightString& a, const LightweightString& b) noexcept
    {
        return b < a;
    }
    friend bool operator<=(const LightweightString& a, const LightweightString& b) noexcept
    {
        return !(b < a);
    }
    friend bool operator>=(const LightweightString& a, const LightweightString& b) noexcept
    {
        return !(a < b);
    }

    // -- Writing

    /// A null pointer counts as empty.
    LightweightString& assign(const C* text) { return assign(view(text)); }
    LightweightString& assign(const C* text, size_type length)
    {
        return assign(View(text, length));
    }
    LightweightString& assign(View text)
    {
        if (holds(text.data()))
            return *this = LightweightString(text);
        resizeFor(text.size());
        if (impl_)
            copyChars(impl_->chars, text.data(), text.size());
        return *this;
    }
    LightweightString& operator=(const C* text) { return assign(text); }
    LightweightString& operator=(View text) { return assign(text); }

    LightweightString& append(const C* text) { return append(view(text)); }
    LightweightString& append(const C* text, size_type length)
    {
        return append(View(text, length));
    }
    LightweightString& append(size_type count, C c)
    {
        if (count > 0)
            std::fill_n(grow(count), count, c);
        return *this;
    }
    LightweightString& append(View text)
    {
        if (!text.empty()) {
            const Record keep =
                holds(text.data()) ? impl_ : Record(); // text may lie in the old record
            copyChars(grow(text.size()), text.data(), text.size());
        }
        return *this;
    }
    LightweightString& operator+=(View text) { return append(text); }
    LightweightString& operator+=(const C* text) { return append(text); }
    LightweightString& operator+=(C c)
    {
        push_back(c);
        return *this;
    }

    void push_back(C c)
    {
        if (Impl* impl = impl_.get()) {
            const size_type length = impl->length;
            if (length + 1 < impl->capacity && isSoleOwner()) {
                impl->length = length + 1;
                C* end = impl->inlineChars() + length;
                end[0] = c;
                end[1] = C();
                return;
            }
        }
        *grow(1) = c;
    }
    void pop_back() { resize(size() - 1); }

    LightweightString& insert(size_type at, View text)
    {
        return *this = concat(view().substr(0, at), text, view().substr(std::min(at, size())));
    }
    LightweightString& erase(size_type at, size_type count = npos)
    {
        if (at >= size())
            return *this;
        const View tail = count < size() - at ? view().substr(at + count) : View();
        return *this = concat(view().substr(0, at), tail);
    }
    /// Replaces every occurrence, left to right; an empty `what` changes nothing.
    LightweightString& replaceAll(View what, View with)
    {
        if (what.empty() || !contains(what))
            return *this;
        LightweightString result;
        size_type from = 0;
        for (size_type at = find(what); at != npos; at = find(what, from)) {
            result.append(view().substr(from, at - from)).append(with);
            from = at + static_cast<size_type>(what.size());
        }
        return *this = result.append(view().substr(from));
    }

    /// Sets the length, keeping the characters before it; new ones are `fill`.
    void resize(size_type length, C fill = C())
    {
        if (length > size())
            append(length - size(), fill);
        else if (length == 0)
            impl_.reset();
        else if (length < size()) {
            if (isSoleOwner())
                terminate(length);
            else
                *this = LightweightString(view().substr(0, length));
        }
    }

    /// Prepares the string to be overwritten with `length` characters through writableData(): a
    /// record of its own with room for them. What the characters are until then is not defined.
    void resizeFor(std::size_t length)
    {
        if (length == 0)
            impl_.reset();
        else if (impl_ && isSoleOwner() && impl_->capacity > length)
            terminate(static_cast<size_type>(length));
        else
            impl_ = makeRecord(length, Room::eGrowing);
    }

    /// Makes room for `length` characters in a record of the string's own; the text stays.
    void reserve(size_type length)
    {
        if (length < size() || (impl_ && isSoleOwner() && impl_->capacity > length))
            return;
        const size_type old = size();
        if (length > old) {
            grow(length - old);
            terminate(old);
        }
    }

    /// The characters for writing, in a record of the string's own; null when empty.
    C* writableData()
    {
        if (!impl_)
            return nullptr;
        if (!isSoleOwner())
            *this = LightweightString(view());
        return impl_->chars;
    }

    void clear() noexcept { impl_.reset(); }
    void swap(LightweightString& other) noexcept { impl_.swap(other.impl_); }

    // -- Making others

    LightweightString toLower() const
    {
        return mapped([](C c) { return Tq::detail::foldCase(c); });
    }
    LightweightString toUpper() const
    {
        return mapped([](C c) { return Tq::detail::upperCase(c); });
    }
    /// Without the blanks, tabs and line ends at both ends.
    LightweightString trimmed() const
    {
        static constexpr C kBlanks[] = {' ', '\t', '\n', '\r', '\f', '\v', 0};
        const size_type first = find_first_not_of(kBlanks);
        return first == npos ? LightweightString()
                             : substr(first, find_last_not_of(kBlanks) + 1 - first);
    }

    /// The parts of a range of strings in one, with a separator between each two.
    template <class Range>
    static LightweightString join(const Range& parts, View separator)
    {
        LightweightString result;
        bool first = true;
        for (const auto& part : parts) {
            if (!std::exchange(first, false))
                result.append(separator);
            result.append(View(part));
        }
        return result;
    }

    friend LightweightString operator+(const LightweightString& a, const LightweightString& b)
    {
        return b.empty() ? a : a.empty() ? b : concat(a.view(), b.view());
    }
    friend LightweightString operator+(const LightweightString& a, View b)
    {
        return concat(a.view(), b);
    }
    friend LightweightString operator+(const LightweightString& a, const C* b)
    {
        return concat(a.view(), view(b));
    }
    friend LightweightString operator+(const LightweightString& a, C b)
    {
        return concat(a.view(), View(&b, 1));
    }
    friend LightweightString operator+(const C* a, const LightweightString& b)
    {
        return concat(view(a), b.view());
    }
    friend LightweightString operator+(C a, const LightweightString& b)
    {
        return concat(View(&a, 1), b.view());
    }

private:
    using Record = Tq::Ptr<Impl, typename Impl::DtorTraits, Tq::InternalRefCountTraits>;
    enum class Room
    {
        eExact,
        eGrowing
    };

    static constexpr C kEmpty[1] = {};

    static View view(const C* text) noexcept { return text ? View(text) : View(); }
    static size_type pos(std::size_t found) noexcept
    {
        return found == View::npos ? npos : static_cast<size_type>(found);
    }
    static std::size_t wide(size_type from) noexcept { return from == npos ? View::npos : from; }
    static void copyChars(C* to, const C* from, std::size_t count) noexcept
    {
        std::memmove(to, from, count * sizeof(C));
    }
    static bool equal(View a, View b) noexcept
    {
        return a.size() == b.size() &&
               (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(C)) == 0);
    }
    static int compareLengths(std::size_t a, std::size_t b) noexcept { return (a > b) - (a < b); }
    static int compareCommon(const C* a, const C* b, std::size_t count) noexcept
    {
        if constexpr (sizeof(C) == 1)
            return std::memcmp(a, b, count);
        else
            return std::wmemcmp(a, b, count);
    }
    static int compareChars(View a, View b) noexcept
    {
        const std::size_t common = std::min(a.size(), b.size());
        const int order = common > 0 ? compareCommon(a.data(), b.data(), common) : 0;
        return order != 0 ? order : compareLengths(a.size(), b.size());
    }

    static std::size_t capacityFor(std::size_t length, Room room)
    {
        if (length > std::size_t(std::numeric_limits<int>::max()))
            throw std::length_error("LightweightString");
        return room == Room::eExact ? length + 1 : std::bit_ceil(length + 1);
    }
    static std::size_t blockSize(std::size_t capacity)
    {
        return sizeof(Impl) + capacity * sizeof(C);
    }

    /// A record of length `length`, counted once and terminated; its characters are not set.
    static Record makeRecord(std::size_t length, Room room)
    {
        const std::size_t capacity = capacityFor(length, room);
        void* block = Tq::detail::stringHeap()->alloc(blockSize(capacity));
        if (!block)
            throw std::bad_alloc();
        Impl* impl = new (block) Impl;
        impl->chars = impl->inlineChars();
        impl->length = static_cast<size_type>(length);
        impl->capacity = static_cast<size_type>(capacity);
        impl->count = 1;
        impl->chars[length] = C();
        return Record::adoptCounted(impl);
    }

    template <class... Parts>
    static LightweightString concat(Parts... parts)
    {
        const std::size_t total = (std::size_t(0) + ... + parts.size());
        LightweightString result;
        if (total == 0)
            return result;
        result.impl_ = makeRecord(total, Room::eExact);
        C* to = result.impl_->chars;
        ((parts.empty() ? void() : copyChars(to, parts.data(), parts.size()), to += parts.size()),
         ...);
        return result;
    }

    template <class Map>
    LightweightString mapped(Map map) const
    {
        LightweightString result;
        if (!empty()) {
            result.impl_ = makeRecord(size(), Room::eExact);
            std::transform(begin(), end(), result.impl_->chars, map);
        }
        return result;
    }

    bool isSoleOwner() const noexcept
    {
        return __atomic_load_n(&impl_->count, __ATOMIC_ACQUIRE) == 1;
    }
    bool holds(const C* text) const noexcept
    {
        return impl_ && !std::less<const C*>()(text, begin()) && std::less<const C*>()(text, end());
    }
    void terminate(size_type length) noexcept
    {
        impl_->length = length;
        impl_->inlineChars()[length] = C();
    }

    /// Makes the string `count` characters longer. @return where they go
    /// Out of line: the loops of callers that append keep only the fast case.
    [[gnu::noinline]] C* grow(std::size_t count)
    {
        const size_type old = size();
        const std::size_t length = old + count;
        if (impl_ && isSoleOwner()) {
            if (impl_->capacity <= length)
                enlarge(length);
            terminate(static_cast<size_type>(length));
        } else {
            Record record = makeRecord(length, Room::eGrowing);
            if (old > 0)
                copyChars(record->chars, impl_->chars, old);
            impl_ = std::move(record);
        }
        return impl_->inlineChars() + old;
    }

    /// Gives a record of the string's own room for `length` characters, in place where the heap
    /// can.
    void enlarge(std::size_t length)
    {
        const std::size_t capacity = capacityFor(length, Room::eGrowing);
        void* block = Tq::detail::stringHeap()->reAlloc(impl_.get(), blockSize(capacity));
        if (!block)
            throw std::bad_alloc();
        impl_.detachCounted(); // the block may have moved, with the count in it
        Impl* impl = static_cast<Impl*>(block);
        impl->chars = impl->inlineChars();
        impl->capacity = static_cast<size_type>(capacity);
        impl_ = Record::adoptCounted(impl);
    }

    Record impl_;
};

template <class C>
struct std::hash<LightweightString<C>>
{
    std::size_t operator()(const LightweightString<C>& text) const noexcept
    {
        return std::hash<std::basic_string_view<C>>()(text.view());
    }
};
