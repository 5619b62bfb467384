#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

namespace VeskLib::VeskUi {

template <typename T>
class PrimitiveTypeWrapper;

// One 32-bit number. On the wire: 4 bytes, big-endian.
template <>
class PrimitiveTypeWrapper<unsigned int> : public SerializableObject {
public:
    explicit PrimitiveTypeWrapper(unsigned int value = 0) : value(value) {}

    // Throws PException ("Too short size") if `size` is less than 4.
    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;

    // Returns false and leaves `value` unchanged if `size` is greater than 4. For any other size,
    // even one below 4, reads four bytes of `buffer`, to stay compatible with the back-end. The
    // caller must provide four readable bytes; the request channel pads its buffers for this.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    unsigned int value;
};

}  // namespace VeskLib::VeskUi
