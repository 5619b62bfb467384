#pragma once

#include "data/ComponentInfoCollection.h"
#include "data/PrimitiveTypeArray.h"

#include <VeskLib/VeskUi/SerializablePacket.h>

#include <cstdint>

namespace VeskLib::VeskUi {

// Which boards of the server are installed. The program makes and destroys the packet; its
// queries and its own serialization are the platform's, and so is what the records mean.
class HardInstallInfoPacket : public SerializablePacket {
public:
    // 4 bytes on the wire: one 32-bit word.
    struct SBData {
        std::uint32_t word = 0;
    };

    // 6 bytes on the wire: a 32-bit word, then a 16-bit word. Packed, because a board's library may
    // walk the records in memory, where they are 6 bytes as well.
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

    // Whether board `number` of `kind` is installed. Kind 0 is a system board (0 to 15).
    bool isInstalled(int kind, int number) const;

    // Whether that board is its partition's home board. `sub` is 0 for a system board.
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
