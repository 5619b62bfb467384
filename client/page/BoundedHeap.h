#pragma once

#include <csetjmp>
#include <cstddef>

namespace Efictl {

// Memory for a C library that cannot be told that there is no more: at the limit it is left by
// longjmp() to `escape`, which its caller has set. Everything is freed with the heap.
class BoundedHeap {
public:
    explicit BoundedHeap(std::size_t limit) : limit(limit) {}
    BoundedHeap(const BoundedHeap&) = delete;
    BoundedHeap& operator=(const BoundedHeap&) = delete;
    ~BoundedHeap();

    // Never returns null.
    void* allocate(std::size_t size);

    // Frees what allocate() returned; nothing happens for null.
    void release(void* memory);

    std::jmp_buf escape;

private:
    struct Block;

    const std::size_t limit;
    std::size_t used = 0;
    Block* blocks = nullptr;
};

}  // namespace Efictl
