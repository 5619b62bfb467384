#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

// Computes a SHA-256 sum (FIPS 180-4) incrementally. Implemented here because Debian has no library
// for it on some of the processors that the host platform is built for.
class SHA256 {
public:
    void add(std::string_view bytes);

    // Returns the sum of all bytes added, as 64 lowercase hexadecimal digits. Call it only once.
    std::string finish();

private:
    void takeBlock(const unsigned char* block);

    std::uint32_t state[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                              0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    unsigned char pending[64] = {};
    std::size_t pendingSize = 0;
    std::uint64_t total = 0;
};

// Return the sum of `bytes`, as 64 lowercase hexadecimal digits.
std::string sha256Hex(std::string_view bytes);
std::string sha256Hex(const std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Host
