#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::VeskUi {

// A counted list of elements, each with its length in front. On the wire: the number of elements
// in 2 bytes; per element its length in 2 bytes and its own wire form; all big-endian.
//
// Made for PrimitiveTypeArray<unsigned char>; ComponentInfoCollection.cpp holds the instance.
template <typename Element>
class ComponentInfoCollection : public SerializableObject {
public:
    ComponentInfoCollection() = default;
    ComponentInfoCollection(const ComponentInfoCollection&) = delete;
    ComponentInfoCollection& operator=(const ComponentInfoCollection&) = delete;

    // Deletes the elements; null pointers are passed over.
    ~ComponentInfoCollection() override;

    // Throws PException ("Different Buffer Size") when `size` is below getSerializedSize().
    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;

    // Appends the elements on the wire to those the collection holds and returns true. Throws
    // PException ("Different Buffer Size") when `size` is too small for the count, for a length
    // or for an element, or when bytes are left behind the last element; the elements before the
    // fault then stay in the collection. A count of 0 is accepted whatever follows it.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    std::vector<Element*> elements;  // owned
};

}  // namespace VeskLib::VeskUi
