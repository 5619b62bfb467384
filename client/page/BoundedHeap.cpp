#include "client/page/BoundedHeap.h"

#include <malloc.h>

#include <cstdlib>

namespace Efictl {

// The header of each allocation. Links the allocations into a list.
struct alignas(std::max_align_t) BoundedHeap::Block {
    Block* former;
    Block* next;
};

BoundedHeap::~BoundedHeap() {
    while (blocks != nullptr) {
        Block* const block = blocks;
        blocks = block->next;
        std::free(block);
    }
}

void* BoundedHeap::allocate(std::size_t size) {
    const std::size_t whole = size + sizeof(Block);
    Block* block = nullptr;
    if (used < limit && size < limit && whole <= limit - used) {
        block = static_cast<Block*>(std::malloc(whole));
    }
    if (block == nullptr) {
        // NOLINTNEXTLINE(cert-err52-cpp): an exception would have to pass through C.
        std::longjmp(escape, 1);
    }
    used += malloc_usable_size(block);
    *block = {nullptr, blocks};
    if (blocks != nullptr) {
        blocks->former = block;
    }
    blocks = block;
    return block + 1;
}

void BoundedHeap::release(void* memory) {
    if (memory == nullptr) {
        return;
    }
    Block* const block = static_cast<Block*>(memory) - 1;
    if (block->next != nullptr) {
        block->next->former = block->former;
    }
    (block->former == nullptr ? blocks : block->former->next) = block->next;
    used -= malloc_usable_size(block);
    std::free(block);
}

}  // namespace Efictl
