#include "data/HardInstallInfoPacket.h"

#include "data/WireCursor.h"
#include "data/containerExceptions.h"
#include "platform/host/channel/boardRecords.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace VeskLib::VeskUi {

namespace {

const unsigned int LENGTH_SIZE = 4;
const std::size_t MEMBER_COUNT = 11;

// Returns the members in their order on the wire.
template <typename Object, typename Packet>
std::array<Object*, MEMBER_COUNT> membersOf(Packet& packet) {
    return {&packet.systemBoards,  &packet.firstBoards,   &packet.secondBoards,
            &packet.ioBoards,      &packet.gspBoards,     &packet.byteArrays[0],
            &packet.byteArrays[1], &packet.byteArrays[2], &packet.byteArrays[3],
            &packet.byteArrays[4], &packet.byteArrays[5]};
}

void exchangeContents(HardInstallInfoPacket& one, HardInstallInfoPacket& other) {
    one.systemBoards.records.swap(other.systemBoards.records);
    one.firstBoards.elements.swap(other.firstBoards.elements);
    one.secondBoards.elements.swap(other.secondBoards.elements);
    one.ioBoards.records.swap(other.ioBoards.records);
    one.gspBoards.records.swap(other.gspBoards.records);
    for (std::size_t i = 0; i < std::size(one.byteArrays); ++i) {
        one.byteArrays[i].records.swap(other.byteArrays[i].records);
    }
}

// Returns true if the packet's wire form is exactly these bytes. Detects malformed bytes that the
// containers ignore.
bool isWrittenAs(const HardInstallInfoPacket& packet, const unsigned char* buffer,
                 unsigned int size) {
    if (packet.getSerializedSize() != size) {
        return false;
    }
    std::vector<unsigned char> bytes(size);
    packet.getSerialized(bytes.data(), size);
    return std::equal(bytes.begin(), bytes.end(), buffer);
}

// Returns the word of the board's record; 0 if there is no such board.
template <typename Record>
std::uint32_t wordOf(const PrimitiveTypeArray<Record>& boards, int number) {
    const auto index = static_cast<std::size_t>(number);
    return number >= 0 && index < boards.records.size() ? boards.records[index].word : 0;
}

}  // namespace

bool HardInstallInfoPacket::isInstalled(int kind, int number) const {
    std::uint32_t word = 0;
    if (kind == Host::SYSTEM_BOARD) {
        word = wordOf(systemBoards, number);
    } else if (kind == Host::IO_BOARD) {
        word = wordOf(ioBoards, number);
    } else if (kind == Host::GSP_BOARD) {
        word = wordOf(gspBoards, number);
    }
    return (word & Host::BOARD_INSTALLED) != 0;
}

bool HardInstallInfoPacket::isHome(int kind, int number, int sub) const {
    // Only a system board can be a home board, and it has no sub-boards.
    return kind == Host::SYSTEM_BOARD && sub == 0 &&
           (wordOf(systemBoards, number) & Host::BOARD_IS_HOME) != 0;
}

unsigned int HardInstallInfoPacket::getSerialized(unsigned char* buffer, unsigned int size) const {
    const unsigned int wanted = getSerializedSize();
    if (size < wanted) {
        throw makeDifferentBufferSize("HardInstallInfoPacket::getSerialized");
    }
    unsigned int position = 0;
    for (const SerializableObject* member : membersOf<const SerializableObject>(*this)) {
        const unsigned int length = member->getSerializedSize();
        WireWriter(buffer + position, LENGTH_SIZE).writeU32(length);
        position += LENGTH_SIZE;
        member->getSerialized(buffer + position, length);
        position += length;
    }
    return wanted;
}

unsigned int HardInstallInfoPacket::getSerializedSize() const {
    unsigned int size = 0;
    for (const SerializableObject* member : membersOf<const SerializableObject>(*this)) {
        size += LENGTH_SIZE + member->getSerializedSize();
    }
    return size;
}

bool HardInstallInfoPacket::setSerialized(const unsigned char* buffer, unsigned int size) {
    // Read into a separate packet, because the containers append, and an error must not change this
    // one.
    HardInstallInfoPacket read;
    WireReader reader(buffer, size);
    for (SerializableObject* member : membersOf<SerializableObject>(read)) {
        const unsigned int length = reader.readU32();
        const unsigned char* bytes = reader.readBytes(length);
        if (reader.failed() || !member->setSerialized(bytes, length)) {
            return false;
        }
    }
    if (reader.remaining() != 0 || !isWrittenAs(read, buffer, size)) {
        return false;
    }
    exchangeContents(*this, read);
    return true;
}

}  // namespace VeskLib::VeskUi
