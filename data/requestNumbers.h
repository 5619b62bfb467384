#pragma once

namespace VeskLib::VeskUi {

// The requests that the program sends to the back-end, which defines the numbers.
enum RequestNumber : unsigned int {
    GET_PARTITION_INFO = 0x0201002F,     // getInfo, PartitionInfoPacket
    GET_HARD_INSTALL_INFO = 0x02010021,  // getInfo, HardInstallInfoPacket
    GET_VERSION_INFO = 0x02010201,       // getInfo, VersionInfoPacket
    SET_BACKUP = 0x020100A3,   // setInfo, PrimitiveTypeWrapper<unsigned int>: the partition
    SET_RESTORE = 0x020100A4,  // setInfo, PrimitiveTypeArray<unsigned char>: the targets
};

}  // namespace VeskLib::VeskUi
