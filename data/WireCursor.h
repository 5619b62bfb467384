#pragma once

#include <cstddef>
#include <cstdint>

namespace VeskLib::VeskUi {

// Reads big-endian integers and bytes from a buffer, which must outlive the reader.
//
// A read past the end returns zero (readBytes(): null) and sets failed(). So do all reads after it,
// so that callers need to check for errors only once, at the end.
class WireReader {
public:
    WireReader(const unsigned char* bytes, std::size_t size) : bytes(bytes), size(size) {}

    std::uint16_t readU16() { return static_cast<std::uint16_t>(readBigEndian(2)); }
    std::uint32_t readU32() { return readBigEndian(4); }

    // Returns a pointer to the next `count` bytes and skips them, or null if fewer remain.
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

// Writes big-endian integers and bytes into a buffer, which must outlive the writer.
//
// A write past the end is dropped, as are all writes after it, and sets failed().
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
