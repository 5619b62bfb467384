#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::VeskUi {

// A counted array of fixed-size records. On the wire: the count in 2 bytes, then the records back
// to back, all big-endian.
//
// Made for `unsigned char` and the record types of HardInstallInfoPacket; PrimitiveTypeArray.cpp
// holds the instances.
template <typename T>
class PrimitiveTypeArray : public SerializableObject {
public:
    // Throws PException ("Insufficient buffer size") when `size` is below getSerializedSize();
    // `buffer` is then unchanged. More than 65535 records write a count cut to 16 bits, and all the
    // records.
    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;

    // Appends the records on the wire to those of the array, which is not cleared first. Ignores
    // bytes after the announced records. Returns false and appends nothing when `size` is too small
    // for the count or for the announced records.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    std::vector<T> records;
};

}  // namespace VeskLib::VeskUi
