#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <memory>
#include <vector>

namespace VeskLib::VeskUi {

// A list of elements. On the wire: the number of elements in 2 bytes; then, for each element, its
// length in 2 bytes and its own wire form; all big-endian.
//
// ComponentInfoCollection.cpp instantiates it for PrimitiveTypeArray<unsigned char>.
template <typename Element>
class ComponentInfoCollection : public SerializableObject {
public:
    // Throws PException ("Different Buffer Size"), and leaves `buffer` unchanged, if `size` is less
    // than getSerializedSize(). A count or length above 65535 is truncated to 16 bits; all elements
    // are written completely.
    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;

    // Appends the elements in `buffer` to the collection and returns true. Throws PException
    // ("Different Buffer Size") if `size` is too small for the count (0 or 1 bytes), a length or an
    // element, or if bytes follow the last element; the elements before the error then remain in
    // the collection. After a count of 0, any further bytes are ignored.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    std::vector<std::unique_ptr<Element>> elements;
};

}  // namespace VeskLib::VeskUi
