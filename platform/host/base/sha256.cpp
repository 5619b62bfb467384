#include "platform/host/base/sha256.h"

#include "platform/host/base/hexadecimal.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace VeskLib::Host {

namespace {

const std::size_t BLOCK_SIZE = 64;
const std::size_t LENGTH_SIZE = 8;  // of the bit count at the end of the last block

const std::uint32_t ROUND_CONSTANTS[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

// Reads a word of the block, which is big-endian on every processor.
std::uint32_t readWord(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
           static_cast<std::uint32_t>(bytes[2]) << 8 | static_cast<std::uint32_t>(bytes[3]);
}

// One round: changes `d` and `h`.
inline void mix(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t& d,
                std::uint32_t e, std::uint32_t f, std::uint32_t g, std::uint32_t& h,
                std::uint32_t word) {
    // Nested rotations take fewer instructions than three separate ones.
    const std::uint32_t s1 = std::rotr(e ^ std::rotr(e ^ std::rotr(e, 14), 5), 6);
    const std::uint32_t choice = g ^ (e & (f ^ g));
    const std::uint32_t s0 = std::rotr(a ^ std::rotr(a ^ std::rotr(a, 9), 11), 2);
    const std::uint32_t majority = (a & b) | (c & (a | b));
    h += s1 + choice + word;
    d += h;
    h += s0 + majority;
}

}  // namespace

void SHA256::takeBlock(const unsigned char* block) {
    std::uint32_t w[64];
    for (int i = 0; i < 16; ++i) {
        w[i] = readWord(block + 4 * i);
    }
    for (int i = 16; i < 64; ++i) {
        const std::uint32_t s0 =
            std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ (w[i - 15] >> 3);
        const std::uint32_t s1 =
            std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ (w[i - 2] >> 10);
        w[i] = w[i - 16] + s0 + w[i - 7] + s1;
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (int i = 0; i < 64; i += 8) {
        // Instead of moving the words one place in each round, pass them in rotated order; after
        // eight rounds the order is the same again.
        mix(a, b, c, d, e, f, g, h, ROUND_CONSTANTS[i] + w[i]);
        mix(h, a, b, c, d, e, f, g, ROUND_CONSTANTS[i + 1] + w[i + 1]);
        mix(g, h, a, b, c, d, e, f, ROUND_CONSTANTS[i + 2] + w[i + 2]);
        mix(f, g, h, a, b, c, d, e, ROUND_CONSTANTS[i + 3] + w[i + 3]);
        mix(e, f, g, h, a, b, c, d, ROUND_CONSTANTS[i + 4] + w[i + 4]);
        mix(d, e, f, g, h, a, b, c, ROUND_CONSTANTS[i + 5] + w[i + 5]);
        mix(c, d, e, f, g, h, a, b, ROUND_CONSTANTS[i + 6] + w[i + 6]);
        mix(b, c, d, e, f, g, h, a, ROUND_CONSTANTS[i + 7] + w[i + 7]);
    }
    const std::uint32_t words[8] = {a, b, c, d, e, f, g, h};
    for (int i = 0; i < 8; ++i) {
        state[i] += words[i];
    }
}

void SHA256::add(std::string_view bytes) {
    total += bytes.size();
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), BLOCK_SIZE - pendingSize);
        std::memcpy(pending + pendingSize, bytes.data(), count);
        pendingSize += count;
        bytes.remove_prefix(count);
        if (pendingSize == BLOCK_SIZE) {
            takeBlock(pending);
            pendingSize = 0;
        }
    }
}

std::string SHA256::finish() {
    // Padding: one set bit, then zeros, then the number of bits at the end of a block.
    const std::uint64_t bits = total * 8;
    char end[BLOCK_SIZE + LENGTH_SIZE] = {'\x80'};
    const std::size_t used = (pendingSize + 1 + LENGTH_SIZE) % BLOCK_SIZE;
    const std::size_t size = 1 + (used == 0 ? 0 : BLOCK_SIZE - used) + LENGTH_SIZE;
    for (std::size_t i = 0; i < LENGTH_SIZE; ++i) {
        end[size - 1 - i] = static_cast<char>(bits >> 8 * i & 0xFF);
    }
    add({end, size});

    unsigned char sum[sizeof state];
    for (std::size_t i = 0; i < sizeof sum; ++i) {
        sum[i] = static_cast<unsigned char>(state[i / 4] >> (24 - 8 * (i % 4)) & 0xFF);
    }
    return toHexadecimal(sum, sizeof sum);
}

std::string sha256Hex(std::string_view bytes) {
    SHA256 sum;
    sum.add(bytes);
    return sum.finish();
}

std::string sha256Hex(const std::vector<unsigned char>& bytes) {
    return sha256Hex(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

}  // namespace VeskLib::Host
