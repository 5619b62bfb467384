#include "data/PrimitiveTypeArray.h"

#include "data/HardInstallInfoPacket.h"
#include "data/WireCursor.h"
#include "data/containerExceptions.h"

#include <cstdint>

namespace VeskLib::VeskUi {

namespace {

const unsigned int COUNT_SIZE = 2;

// The wire form of a record type. Not defined for other types.
template <typename T>
struct RecordForm;

template <>
struct RecordForm<unsigned char> {
    static constexpr unsigned int SIZE = 1;

    static void write(WireWriter& writer, const std::vector<unsigned char>& records) {
        writer.writeBytes(records.data(), records.size());
    }

    static void append(WireReader& reader, unsigned int count,
                       std::vector<unsigned char>& records) {
        const unsigned char* bytes = reader.readBytes(count);
        records.insert(records.end(), bytes, bytes + count);
    }
};

// The form of records that are a 32-bit word, followed by a 16-bit word when `Size` is 6.
template <typename T, unsigned int Size>
struct WordsForm {
    static constexpr unsigned int SIZE = Size;
    static_assert(sizeof(T) == SIZE);

    static void write(WireWriter& writer, const std::vector<T>& records) {
        for (const T& record : records) {
            writer.writeU32(record.word);
            if constexpr (SIZE == 6) {
                writer.writeU16(record.halfWord);
            }
        }
    }

    static void append(WireReader& reader, unsigned int count, std::vector<T>& records) {
        records.reserve(records.size() + count);
        for (unsigned int i = 0; i < count; ++i) {
            T record;
            record.word = reader.readU32();
            if constexpr (SIZE == 6) {
                record.halfWord = reader.readU16();
            }
            records.push_back(record);
        }
    }
};

template <>
struct RecordForm<HardInstallInfoPacket::SBData> : WordsForm<HardInstallInfoPacket::SBData, 4> {};

template <>
struct RecordForm<HardInstallInfoPacket::IOBData> : WordsForm<HardInstallInfoPacket::IOBData, 6> {};

template <>
struct RecordForm<HardInstallInfoPacket::GSPBData> : WordsForm<HardInstallInfoPacket::GSPBData, 6> {
};

}  // namespace

template <typename T>
unsigned int PrimitiveTypeArray<T>::getSerialized(unsigned char* buffer, unsigned int size) const {
    const unsigned int wanted = getSerializedSize();
    if (wanted > size) {
        throw makeBufferTooSmall(ARRAY_MODULE, "Insufficient buffer size");
    }
    WireWriter writer(buffer, size);
    // Only the count is truncated to 16 bits: the size that precedes the object on the channel
    // includes all records.
    writer.writeU16(static_cast<std::uint16_t>(records.size()));
    RecordForm<T>::write(writer, records);
    return wanted;
}

template <typename T>
unsigned int PrimitiveTypeArray<T>::getSerializedSize() const {
    return COUNT_SIZE + static_cast<unsigned int>(records.size()) * RecordForm<T>::SIZE;
}

template <typename T>
bool PrimitiveTypeArray<T>::setSerialized(const unsigned char* buffer, unsigned int size) {
    if (size < COUNT_SIZE) {
        return false;
    }
    WireReader reader(buffer, size);
    const unsigned int count = reader.readU16();
    if (size < COUNT_SIZE + count * RecordForm<T>::SIZE) {
        return false;
    }
    // Intended: a second call appends to the records of the first.
    RecordForm<T>::append(reader, count, records);
    return true;
}

template class PrimitiveTypeArray<unsigned char>;
template class PrimitiveTypeArray<HardInstallInfoPacket::SBData>;
template class PrimitiveTypeArray<HardInstallInfoPacket::IOBData>;
template class PrimitiveTypeArray<HardInstallInfoPacket::GSPBData>;

}  // namespace VeskLib::VeskUi
