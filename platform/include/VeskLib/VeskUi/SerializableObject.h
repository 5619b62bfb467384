#pragma once

namespace VeskLib::VeskUi {

// What travels over the back-end request channel: it tells its size, writes itself into a buffer
// and rebuilds itself from one. All integers on the wire are big-endian, records are packed.
class SerializableObject {
public:
    SerializableObject() = default;
    SerializableObject(const SerializableObject&) = default;
    SerializableObject& operator=(const SerializableObject&) = default;
    virtual ~SerializableObject() = default;

    // Writes the object into `buffer` of `size` bytes and returns the number of bytes written,
    // which is getSerializedSize(). Throws PException when `size` is too small; `buffer` then
    // holds no complete object.
    virtual unsigned int getSerialized(unsigned char* buffer, unsigned int size) const = 0;

    // The exact number of bytes getSerialized() writes.
    virtual unsigned int getSerializedSize() const = 0;

    // Rebuilds the object from `size` bytes. False when they are too few; the object then holds
    // what it held before, unless its class says otherwise.
    virtual bool setSerialized(const unsigned char* buffer, unsigned int size) = 0;
};

}  // namespace VeskLib::VeskUi
