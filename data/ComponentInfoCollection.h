#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <memory>
#include <vector>

namespace VeskLib::VeskUi {

// A counted list of elements, each preceded by its length. On the wire: the number of elements in
// 2 bytes; per element its length in 2 bytes and its own wire form; all big-endian.
//
// Made for PrimitiveTypeArray<unsigned char>; ComponentInfoCollection.cpp holds the instance.
template <typename Element>
class ComponentInfoCollection : public SerializableObject {
public:
    // Throws PException ("Different Buffer Size") when `size` is below getSerializedSize();
    // `buffer` is then unchanged. A count or a length above 65535 is cut to 16 bits; every element
    // is written whole.
    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;

    // Appends the elements on the wire to those of the collection and returns true. Throws
    // PException ("Different Buffer Size") when `size` is too small for the count (0 or 1 bytes),
    // for a length or for an element, or when bytes follow the last element; the elements preceding
    // the fault then stay in the collection. A count of 0 is accepted whatever follows it.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    std::vector<std::unique_ptr<Element>> elements;
};

}  // namespace VeskLib::VeskUi
