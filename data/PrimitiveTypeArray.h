#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::VeskUi {

// An array of fixed-size records. On the wire: the number of records in 2 bytes, then the records
// without gaps; all big-endian.
//
// PrimitiveTypeArray.cpp instantiates it for `unsigned char` and the record types of
// HardInstallInfoPacket.
template <typename T>
class PrimitiveTypeArray : public SerializableObject {
public:
    // Throws PException ("Insufficient buffer size"), and leaves `buffer` unchanged, if `size` is
    // less than getSerializedSize(). A count above 65535 is truncated to 16 bits; all records are
    // written.
    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;

    // Appends the records in `buffer` to the array, which is not cleared first, and returns true.
    // Ignores bytes after the last record. Returns false and appends nothing if `size` is too small
    // for the count or for that many records.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    std::vector<T> records;
};

}  // namespace VeskLib::VeskUi
