#pragma once

#include "data/ComponentInfoCollection.h"
#include "data/PrimitiveTypeArray.h"

#include <VeskLib/VeskUi/SerializablePacket.h>

#include <cstdint>

namespace VeskLib::VeskUi {

// The boards that are installed in the server. The program implements the constructor and the
// destructor; the platform implements the queries and the serialization, and defines the meaning
// of the records.
class HardInstallInfoPacket : public SerializablePacket {
public:
    // 4 bytes on the wire: one 32-bit word.
    struct SBData {
        std::uint32_t word = 0;
    };

    // 6 bytes on the wire: a 32-bit word, then a 16-bit word. Packed, because a board's library may
    // access the records in memory, where it expects 6 bytes as well.
    struct [[gnu::packed]] IOBData {
        std::uint32_t word = 0;
        std::uint16_t halfWord = 0;
    };

    struct [[gnu::packed]] GSPBData {
        std::uint32_t word = 0;
        std::uint16_t halfWord = 0;
    };

    HardInstallInfoPacket();
    HardInstallInfoPacket(const HardInstallInfoPacket&) = delete;
    HardInstallInfoPacket& operator=(const HardInstallInfoPacket&) = delete;
    ~HardInstallInfoPacket() override;

    // Returns true if board `number` of `kind` is installed. Kind 0 is the system boards, with
    // numbers 0 to 15.
    bool isInstalled(int kind, int number) const;

    // Returns true if that board is its partition's home board. `sub` is 0 for a system board.
    bool isHome(int kind, int number, int sub) const;

    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

    PrimitiveTypeArray<SBData> systemBoards;
    ComponentInfoCollection<PrimitiveTypeArray<unsigned char>> firstBoards;
    ComponentInfoCollection<PrimitiveTypeArray<unsigned char>> secondBoards;
    PrimitiveTypeArray<IOBData> ioBoards;
    PrimitiveTypeArray<GSPBData> gspBoards;
    PrimitiveTypeArray<unsigned char> byteArrays[6];
};

static_assert(sizeof(HardInstallInfoPacket::SBData) == 4);
static_assert(sizeof(HardInstallInfoPacket::IOBData) == 6);
static_assert(sizeof(HardInstallInfoPacket::GSPBData) == 6);

}  // namespace VeskLib::VeskUi
