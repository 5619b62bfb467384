#pragma once

namespace VeskLib::VeskUi {

// An object that is sent over the channel to the back-end. All integers on the wire are big-endian;
// records are packed.
class SerializableObject {
public:
    SerializableObject() = default;
    SerializableObject(const SerializableObject&) = default;
    SerializableObject& operator=(const SerializableObject&) = default;
    virtual ~SerializableObject() = default;

    // Writes the object into `buffer`, which has `size` bytes, and returns the number of bytes
    // written, which is getSerializedSize(). Throws PException if `size` is too small; `buffer`
    // then contains no complete object.
    virtual unsigned int getSerialized(unsigned char* buffer, unsigned int size) const = 0;

    // Returns the exact number of bytes that getSerialized() writes.
    virtual unsigned int getSerializedSize() const = 0;

    // Sets the object from `size` bytes. Returns false if they are too few; the object is then
    // unchanged, unless its class documents otherwise.
    virtual bool setSerialized(const unsigned char* buffer, unsigned int size) = 0;
};

}  // namespace VeskLib::VeskUi
