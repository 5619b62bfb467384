#pragma once

#include <csetjmp>
#include <cstddef>

namespace Efictl {

// A heap with a limit, for a C library that does not check for failed allocations: above the limit,
// allocate() leaves the library by longjmp() to `escape`, which the library's caller has set with
// setjmp(). The destructor frees everything.
class BoundedHeap {
public:
    explicit BoundedHeap(std::size_t limit) : limit(limit) {}
    BoundedHeap(const BoundedHeap&) = delete;
    BoundedHeap& operator=(const BoundedHeap&) = delete;
    ~BoundedHeap();

    // Never returns null: above the limit, calls longjmp().
    void* allocate(std::size_t size);

    // Frees memory of allocate(); does nothing for null.
    void release(void* memory);

    std::jmp_buf escape;

private:
    struct Block;

    const std::size_t limit;
    std::size_t used = 0;
    Block* blocks = nullptr;
};

}  // namespace Efictl
