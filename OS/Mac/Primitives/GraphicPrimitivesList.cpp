#include <OS/Primitives/GraphicPrimitivesList.h>

namespace {

// Whether the list's share is the only one, so that the batch can be destroyed where it lies.
bool isLastShare(const GraphicPrimitivesList::iPrimitiveDescHolder& holder)
{
    return __atomic_load_n(holder.refCount(), __ATOMIC_ACQUIRE) == 1;
}

} // namespace

GraphicPrimitivesList::~GraphicPrimitivesList()
{
    for (Chunk* chunk = first_; chunk;) {
        for (Entry* entry = chunk->begin(); entry != chunk->end(); entry = entry->next()) {
            iPrimitiveDescHolder* holder = entry->holder();
            if (isLastShare(*holder)) {
                holder->~iPrimitiveDescHolder();
            } else {
                // Somebody holds on to it: it takes a share of its memory, and the list's share of
                // it ends.
                __atomic_add_fetch(&chunk->owners, 1, __ATOMIC_RELAXED);
                Tq::Ptr<iPrimitiveDescHolder>::adoptCounted(holder).reset();
            }
        }
        Chunk* next = chunk->next;
        Chunk::release(chunk);
        chunk = next;
    }
}
