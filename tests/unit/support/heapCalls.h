#pragma once

namespace VeskLib::Test {

// How often this process has called operator new and, for other than null, operator delete.
struct HeapCalls {
    unsigned long allocations;
    unsigned long releases;
};

HeapCalls heapCalls();

// Returns false when a tool such as Valgrind has put operators of its own in their place.
bool countsHeapCalls();

}  // namespace VeskLib::Test
