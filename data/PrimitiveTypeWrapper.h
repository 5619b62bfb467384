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

    // Throws PException ("Too short size") when `size` is below 4.
    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;

    // False, and `value` as before, when `size` is above 4. Any other size takes the first four
    // bytes of `buffer`, also a size below 4: that is the wire behaviour the back-end knows. The
    // caller guarantees four readable bytes; the request channel pads its buffers for it.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    unsigned int value;
};

}  // namespace VeskLib::VeskUi
