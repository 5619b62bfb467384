// The containers' two directions, against copying the same bytes.

#include "data/ComponentInfoCollection.h"
#include "data/PrimitiveTypeArray.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

using VeskLib::VeskUi::PrimitiveTypeArray;
using Bytes = std::vector<unsigned char>;

// The most that a count of 16 bits can tell.
const std::size_t MOST_BYTES = 65535;
const std::size_t COUNT_SIZE = 2;

void copyBytes(benchmark::State& state) {
    const Bytes source(MOST_BYTES, 7);
    Bytes target(MOST_BYTES);
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), source.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyBytes);

void writeByteArray(benchmark::State& state) {
    PrimitiveTypeArray<unsigned char> array;
    array.records.assign(MOST_BYTES, 7);
    Bytes wire(array.getSerializedSize());
    for (auto _ : state) {
        array.getSerialized(wire.data(), static_cast<unsigned int>(wire.size()));
        benchmark::DoNotOptimize(wire.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(writeByteArray);

void readByteArray(benchmark::State& state) {
    Bytes wire(COUNT_SIZE + MOST_BYTES, 0xFF);
    PrimitiveTypeArray<unsigned char> array;
    for (auto _ : state) {
        array.records.clear();
        array.setSerialized(wire.data(), static_cast<unsigned int>(wire.size()));
        benchmark::DoNotOptimize(array.records.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(readByteArray);

}  // namespace
