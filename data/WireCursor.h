#pragma once

#include <cstddef>
#include <cstdint>

namespace VeskLib::VeskUi {

// Reads big-endian integers and byte runs from a buffer that the caller keeps alive.
//
// A read past the end gives zeros and turns failed() on for good, so the caller checks once, at
// the end.
class WireReader {
public:
    WireReader(const unsigned char* bytes, std::size_t size) : bytes(bytes), size(size) {}

    std::uint16_t readU16() { return static_cast<std::uint16_t>(readBigEndian(2)); }
    std::uint32_t readU32() { return readBigEndian(4); }

    // A pointer to the next `count` bytes, which are skipped; null when there are not so many.
    const unsigned char* readBytes(std::size_t count);

    std::size_t remaining() const { return size - offset; }
    bool failed() const { return failure; }

private:
    std::uint32_t readBigEndian(std::size_t count);

    const unsigned char* bytes;
    std::size_t size;
    std::size_t offset = 0;
    bool failure = false;
};

// Writes big-endian integers and byte runs into a buffer that the caller keeps alive.
//
// A write past the end is dropped and turns failed() on for good.
class WireWriter {
public:
    WireWriter(unsigned char* bytes, std::size_t size) : bytes(bytes), size(size) {}

    void writeU16(std::uint16_t value) { writeBigEndian(value, 2); }
    void writeU32(std::uint32_t value) { writeBigEndian(value, 4); }
    void writeBytes(const void* source, std::size_t count);

    bool failed() const { return failure; }

private:
    void writeBigEndian(std::uint32_t value, std::size_t count);

    unsigned char* bytes;
    std::size_t size;
    std::size_t offset = 0;
    bool failure = false;
};

}  // namespace VeskLib::VeskUi
