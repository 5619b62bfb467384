#include "tests/unit/support/heapCalls.h"

#include <cstdlib>
#include <new>

namespace {

VeskLib::Test::HeapCalls counted = {0, 0};

}  // namespace

void* operator new(std::size_t size) {
    ++counted.allocations;
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    counted.releases += memory != nullptr ? 1 : 0;
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    operator delete(memory);
}

namespace VeskLib::Test {

HeapCalls heapCalls() {
    return counted;
}

bool countsHeapCalls() {
    const unsigned long before = counted.allocations;
    operator delete(operator new(1));
    return counted.allocations != before;
}

}  // namespace VeskLib::Test
