#pragma once

namespace VeskLib::Test {

// How often this process has called operator new, and operator delete with other than null.
struct HeapCalls {
    unsigned long allocations;
    unsigned long releases;
};

HeapCalls heapCalls();

// Returns false if a tool such as Valgrind has replaced these operators with its own.
bool countsHeapCalls();

}  // namespace VeskLib::Test
