#pragma once

#include <OS/Shared/iHeap.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Bench {

/// An allocator as a program sees it: two indirect calls.
class PeerAllocator
{
public:
    void* alloc(std::size_t size) const { return malloc_(size); }
    void free(void* block) const { free_(block); }
    const std::string& name() const { return name_; }

private:
    friend std::vector<PeerAllocator> loadPeers();
    std::string name_;
    void* (*malloc_)(std::size_t) = nullptr;
    void (*free_)(void*) = nullptr;
};

class OurAllocator
{
public:
    explicit OurAllocator(iHeap& heap) : heap_(&heap) {}
    void* alloc(std::size_t size) const { return heap_->alloc(size); }
    void free(void* block) const { heap_->deAlloc(block); }

private:
    iHeap* heap_;
};

/// The C library's and the installed ones, each in a name space of its own. What is not installed
/// is left out with a line.
std::vector<PeerAllocator> loadPeers();

/// Starts this program anew with a variable set, unless it is; never returns then.
void restartWith(char** arguments, const char* variable, const char* value);

} // namespace Bench
