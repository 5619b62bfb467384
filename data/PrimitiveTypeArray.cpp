#include "data/PrimitiveTypeArray.h"

#include "data/HardInstallInfoPacket.h"
#include "data/WireCursor.h"
#include "data/containerExceptions.h"

#include <cstdint>
#include <type_traits>

namespace VeskLib::VeskUi {

namespace {

const unsigned int COUNT_SIZE = 2;

// The wire form of each record type.
template <typename T>
const unsigned int RECORD_SIZE = 6;
template <>
const unsigned int RECORD_SIZE<unsigned char> = 1;
template <>
const unsigned int RECORD_SIZE<HardInstallInfoPacket::SBData> = 4;

template <typename T>
void writeRecord(WireWriter& writer, const T& record) {
    writer.writeU32(record.word);
    if constexpr (RECORD_SIZE<T> == 6) {
        writer.writeU16(record.halfWord);
    }
}

template <typename T>
T readRecord(WireReader& reader) {
    T record;
    record.word = reader.readU32();
    if constexpr (RECORD_SIZE<T> == 6) {
        record.halfWord = reader.readU16();
    }
    return record;
}

}  // namespace

template <typename T>
unsigned int PrimitiveTypeArray<T>::getSerialized(unsigned char* buffer, unsigned int size) const {
    const unsigned int wanted = getSerializedSize();
    if (wanted > size) {
        throw makeBufferTooSmall(23296, "Insufficient buffer size");
    }
    WireWriter writer(buffer, size);
    // The count is cut to 16 bits, the records are not: the size in front of the object on the
    // channel counts all of them.
    writer.writeU16(static_cast<std::uint16_t>(records.size()));
    if constexpr (std::is_same_v<T, unsigned char>) {
        writer.writeBytes(records.data(), records.size());
    } else {
        for (const T& record : records) {
            writeRecord(writer, record);
        }
    }
    return wanted;
}

template <typename T>
unsigned int PrimitiveTypeArray<T>::getSerializedSize() const {
    return COUNT_SIZE + static_cast<unsigned int>(records.size()) * RECORD_SIZE<T>;
}

template <typename T>
bool PrimitiveTypeArray<T>::setSerialized(const unsigned char* buffer, unsigned int size) {
    if (size < COUNT_SIZE) {
        return false;
    }
    WireReader reader(buffer, size);
    const unsigned int count = reader.readU16();
    if (size < COUNT_SIZE + count * RECORD_SIZE<T>) {
        return false;
    }
    if (count == 0) {
        return true;
    }
    // Appended on purpose: a second call adds to what the array holds.
    if constexpr (std::is_same_v<T, unsigned char>) {
        const unsigned char* bytes = reader.readBytes(count);
        records.insert(records.end(), bytes, bytes + count);
    } else {
        records.reserve(records.size() + count);
        for (unsigned int i = 0; i < count; ++i) {
            records.push_back(readRecord<T>(reader));
        }
    }
    return true;
}

template class PrimitiveTypeArray<unsigned char>;
template class PrimitiveTypeArray<HardInstallInfoPacket::SBData>;
template class PrimitiveTypeArray<HardInstallInfoPacket::IOBData>;
template class PrimitiveTypeArray<HardInstallInfoPacket::GSPBData>;

}  // namespace VeskLib::VeskUi
