#include <OS.h>
#include <OS/Shared/iHeap.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

namespace {

struct alignas(128) Wide
{
    char bytes[256];
};

} // namespace

TEST(GlobalOperators, KeepTheLanguagesRules)
{
    // Through pointers, so that the compiler cannot leave the calls out.
    void* (*volatile allocate)(std::size_t) = &operator new;
    void* (*volatile tryAllocate)(std::size_t, const std::nothrow_t&) = &operator new;
    void (*volatile release)(void*) = &operator delete;

    constexpr std::size_t kTooMuch = std::size_t(1) << 62;
    EXPECT_THROW(allocate(kTooMuch), std::bad_alloc);
    EXPECT_EQ(tryAllocate(kTooMuch, std::nothrow), nullptr);
    void* none = allocate(0);
    EXPECT_NE(none, nullptr);
    release(none);
    release(nullptr);

    auto* wide = new Wide;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(wide) % 128, 0u);
    delete wide;
    release(OS()->heap()->alloc(10)); // one heap
    OS()->heap()->deAlloc(allocate(10));
}

TEST(GlobalOperators, TheNewHandlerIsAskedBeforeGivingUp)
{
    static int calls = 0;
    std::set_new_handler([] {
        if (++calls == 3)
            std::set_new_handler(nullptr);
    });
    void* (*volatile allocate)(std::size_t) = &operator new;
    EXPECT_THROW(allocate(std::size_t(1) << 62), std::bad_alloc);
    EXPECT_EQ(calls, 3);
}
