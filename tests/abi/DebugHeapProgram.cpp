// debug_heap_program WHAT: does one thing with blocks of operator new, for DebugHeapChoiceTest.

#include <OS.h>
#include <OS/Core/LightweightString.h>
#include <OS/Shared/iHeap.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

struct alignas(64) Aligned
{
    char bytes[100];
};

// Exported by name, so that stacks can name it.
extern "C" [[gnu::noinline]] char* makeBlock(std::size_t size)
{
    char* block = new char[size];
    asm volatile("" ::: "memory");
    return block;
}

namespace {

const std::string beforeMain(100, 'x');

void work()
{
    std::map<int, std::string> texts;
    for (int i = 0; i < 500; ++i)
        texts[i] = std::string(static_cast<std::size_t>(i), 'x');
    LightweightString<char> text;
    for (int i = 0; i < 200; ++i)
        text += "grows ";
    delete new Aligned;
    OS()->heap()->deAlloc(std::malloc(10)); // a block from before, as it were
    std::vector<int>(100'000).resize(200'000);
}

} // namespace

int main(int argc, char** argv)
{
    const std::string what = argc > 1 ? argv[1] : "";
    char* block = makeBlock(100);
    if (what == "work") {
        std::thread other(work);
        work();
        other.join();
    } else if (what == "overrun") {
        const_cast<volatile char*>(block)[112] = 0;
    } else if (what == "twice") {
        void (*volatile release)(void*) = &operator delete[];
        release(block);
        release(block);
    } else if (what == "leak") {
        makeBlock(123'456);
        OS()->heap()->report();
    } else if (what == "valid") {
        std::printf("%d%d%d\n", OS()->heap()->isPointerValid(block),
                    OS()->heap()->isPointerValid(block + 1), OS()->heap()->isPointerValid(&block));
    }
    std::puts("end");
    return 0;
}
