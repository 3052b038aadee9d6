// Loads the library into a process that already allocated and runs threads, uses it, and lets go of
// it.

#include <OS.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <locale.h>
#include <string>
#include <thread>
#include <vector>

namespace {

int failures = 0;

void check(bool condition, const char* text)
{
    if (!condition) {
        std::printf("FAILED: %s\n", text);
        ++failures;
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    setlocale(LC_ALL, "");
    std::vector<std::string> early;
    for (int i = 0; i < 1000; ++i)
        early.emplace_back(static_cast<std::size_t>(i), 'x');
    auto* block = new int[100];

    std::atomic<bool> stop{false};
    std::thread allocating([&] {
        while (!stop)
            delete new std::string(100, 'y');
    });

    void* library = dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL);
    check(library != nullptr, "loading");
    if (!library) {
        std::printf("%s\n", dlerror());
        std::abort();
    }
    const auto root = reinterpret_cast<iOperatingSystem* (*)()>(dlsym(library, "_Z2OSv"));
    check(root != nullptr, "OS() is found by name");

    // The first call, by many at once: one root.
    std::vector<iOperatingSystem*> seen(8);
    std::atomic<int> ready{0};
    std::vector<std::thread> callers;
    for (auto& slot : seen)
        callers.emplace_back([&] {
            ++ready;
            while (ready < 8) {
            }
            slot = root();
        });
    for (std::thread& caller : callers)
        caller.join();
    for (iOperatingSystem* found : seen)
        check(found != nullptr && found == seen[0], "one root for all callers");
    check(seen[0]->heap() && seen[0]->threadMgr() && seen[0]->windowMgr() &&
              seen[0]->mediaServices(),
          "the managers");

    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    check(std::string(text) == "1.5", "a decimal point");

    delete[] block; // from before the library
    early.clear();
    dlclose(library);
    check(dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) != nullptr, "the library cannot be unloaded");
    check(root() == seen[0], "the root stays");
    stop = true;
    allocating.join();
    return failures;
}
