// Tests of `new` and `delete` of the programs that the web server starts. This program is linked
// with them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <vector>

namespace VeskLib::Test {

namespace {

struct Allocation {
    std::size_t size;
    unsigned char* place;
};

std::vector<Allocation> allocate(std::size_t count, std::size_t largest) {
    std::vector<Allocation> made(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t size = i % (largest + 1);
        made[i] = {size, static_cast<unsigned char*>(operator new(size))};
        std::memset(made[i].place, static_cast<int>(i % 251), size);
    }
    return made;
}

void expectUntouched(const std::vector<Allocation>& made) {
    for (std::size_t i = 0; i < made.size(); ++i) {
        const auto [size, place] = made[i];
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(place) % alignof(std::max_align_t), 0U);
        for (std::size_t byte = 0; byte < size; ++byte) {
            ASSERT_EQ(place[byte], i % 251) << "object " << i << " of " << size << " bytes";
        }
    }
}

void release(const std::vector<Allocation>& made) {
    for (const Allocation& allocation : made) {
        operator delete(allocation.place, allocation.size);
    }
}

TEST(RequestMemoryTest, keepsObjectsOfAllSizesApart) {
    // More than fits into the block, and some objects too large for it.
    const std::vector<Allocation> made = allocate(5000, 600);
    expectUntouched(made);
    release(made);
}

TEST(RequestMemoryTest, givesEmptyObjectsDistinctAddresses) {
    void* const one = operator new(0);
    void* const other = operator new(0);
    EXPECT_NE(one, other);
    operator delete(one);
    operator delete(other);
    operator delete(nullptr);
}

TEST(RequestMemoryTest, freesObjectsOutsideTheBlock) {
    release(allocate(5000, 600));  // the block is full now
    const std::size_t before = mallinfo2().uordblks;
    for (int round = 0; round < 10; ++round) {
        release(allocate(1000, 600));
    }
    EXPECT_EQ(mallinfo2().uordblks, before);
}

TEST(RequestMemoryTest, throwsIfMemoryIsExhausted) {
    // Volatile, because the compiler would reject a known size.
    volatile std::size_t everything = std::numeric_limits<std::size_t>::max() / 2;
    EXPECT_THROW(operator delete(operator new(everything)), std::bad_alloc);
    EXPECT_EQ(operator new(everything, std::nothrow), nullptr);
    EXPECT_THROW(std::make_unique<char[]>(everything), std::bad_alloc);
}

}  // namespace

}  // namespace VeskLib::Test
