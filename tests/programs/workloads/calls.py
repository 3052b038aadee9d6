# The allocator's calls themselves, with the arguments that programs seldom have; it prints what must hold everywhere.
import ctypes
import errno
import os

c = ctypes.CDLL(None, use_errno=True)
SIZE = ctypes.c_size_t
for name, arguments in [("malloc", [SIZE]), ("calloc", [SIZE] * 2), ("realloc", [ctypes.c_void_p, SIZE]),
                        ("reallocarray", [ctypes.c_void_p, SIZE, SIZE]), ("memalign", [SIZE] * 2),
                        ("aligned_alloc", [SIZE] * 2), ("valloc", [SIZE])]:
    getattr(c, name).argtypes = arguments
    getattr(c, name).restype = ctypes.c_void_p
c.free.argtypes = [ctypes.c_void_p]
c.malloc_usable_size.argtypes = [ctypes.c_void_p]
c.malloc_usable_size.restype = SIZE
c.posix_memalign.argtypes = [ctypes.POINTER(ctypes.c_void_p), SIZE, SIZE]


PATTERN = bytes(range(251)) * 4000


def text(length, seed):
    return PATTERN[seed:seed + length]


def fill(block, length, seed=0):
    ctypes.memmove(block, text(length, seed), length)


def holds(block, length, seed=0):
    return ctypes.string_at(block, length) == text(length, seed)


def posix(alignment, size):
    block = ctypes.c_void_p()
    status = c.posix_memalign(ctypes.byref(block), alignment, size)
    return block.value if status == 0 else status


# Every way of making a block, then resizing it up and down.
sizes = [0, 1, 13, 24, 1000, 32748, 32764, 32765, 32768, 32769, 100000, 900000]
for alignment in (16, 32, 64, 4096, 1 << 21):
    for make in (c.aligned_alloc, c.memalign, posix):
        blocks = [(size, make(alignment, size)) for size in sizes]
        print(alignment, all(block % alignment == 0 and c.malloc_usable_size(block) >= size for size, block in blocks))
        for size, block in blocks:
            fill(block, size)
        for size, block in blocks:
            if not holds(block, size):
                print("lost", alignment, size)
            c.free(block)
for size in sizes[1:]:
    for other in sizes[1:]:
        for block in (c.malloc(size), c.calloc(1, size), c.memalign(64, size), c.valloc(size)):
            fill(block, size, 3)
            block = c.realloc(block, other)
            if not holds(block, min(size, other), 3) or c.malloc_usable_size(block) < other or block % 16 != 0:
                print("lost", size, other)
            c.free(block)

# What is used up to the end that malloc_usable_size() tells stays, too.
for size in sizes:
    block = c.malloc(size)
    usable = c.malloc_usable_size(block)
    fill(block, usable, 5)
    block = c.realloc(block, usable + 50000)
    print(size, holds(block, usable, 5), usable >= size)
    c.free(block)

# Blocks that were used before are zero; nothing, and too much.
for size in sizes[1:]:
    block = c.malloc(size)
    fill(block, size)
    c.free(block)
    block = c.calloc(size, 1)
    print(size, not any(ctypes.string_at(block, size)))
    c.free(block)
c.free(None)
print(c.realloc(c.malloc(5), 0), c.malloc_usable_size(None))
kept = c.malloc(100)
fill(kept, 100, 9)
for refused in (lambda: c.malloc((1 << 63) - 1), lambda: c.malloc(1 << 62), lambda: c.calloc(1 << 40, 1 << 40),
                lambda: c.realloc(kept, 1 << 62), lambda: c.reallocarray(kept, 1 << 40, 1 << 40),
                lambda: c.memalign(64, (1 << 64) - 70), lambda: c.aligned_alloc(1 << 20, 1 << 62)):
    ctypes.set_errno(0)
    print(refused(), errno.errorcode[ctypes.get_errno()])
print(holds(kept, 100, 9), errno.errorcode[posix(24, 10)], errno.errorcode[posix(4, 10)])

# Around 4 GiB, touched at the ends only.
ctypes.set_errno(errno.EDOM)
enough = os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGE_SIZE") > 8 << 30
for size in (0xffff0000, 0xfffffffe, 0xffffffff, 1 << 32, (1 << 32) + 100) if enough else ():
    for make in (lambda: c.malloc(size), lambda: c.memalign(64, size), lambda: c.realloc(c.malloc(100), size)):
        block = make()
        ctypes.memset(block, 1, 1)
        ctypes.memset(block + size - 1, 1, 1)
        print(hex(size), c.malloc_usable_size(block) >= size)
        c.free(block)
print(errno.errorcode[ctypes.get_errno()])
