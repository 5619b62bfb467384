// Benchmarks of reading and writing the containers, compared with copying the same bytes.

#include "data/PrimitiveTypeArray.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

using VeskLib::VeskUi::PrimitiveTypeArray;
using Bytes = std::vector<unsigned char>;

// The largest 16-bit count.
const std::size_t MOST_BYTES = 65535;
const std::size_t COUNT_SIZE = 2;

// An array of MOST_BYTES bytes and its wire form.
struct Fixture {
    Fixture() : wire(COUNT_SIZE + MOST_BYTES, 0xFF) {
        array.setSerialized(wire.data(), static_cast<unsigned int>(wire.size()));
    }

    Bytes wire;
    PrimitiveTypeArray<unsigned char> array;
};

// Copying takes much longer between some addresses than between others. Therefore each direction is
// compared with a copy between the same addresses.

void copyOut(benchmark::State& state) {
    Fixture fixture;
    for (auto _ : state) {
        std::memcpy(fixture.wire.data() + COUNT_SIZE, fixture.array.records.data(), MOST_BYTES);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyOut);

void writeByteArray(benchmark::State& state) {
    Fixture fixture;
    for (auto _ : state) {
        fixture.array.getSerialized(fixture.wire.data(),
                                    static_cast<unsigned int>(fixture.wire.size()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(writeByteArray);

void copyIn(benchmark::State& state) {
    Fixture fixture;
    for (auto _ : state) {
        std::memcpy(fixture.array.records.data(), fixture.wire.data() + COUNT_SIZE, MOST_BYTES);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyIn);

void readByteArray(benchmark::State& state) {
    Fixture fixture;
    for (auto _ : state) {
        fixture.array.records.clear();
        fixture.array.setSerialized(fixture.wire.data(),
                                    static_cast<unsigned int>(fixture.wire.size()));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(readByteArray);

}  // namespace
