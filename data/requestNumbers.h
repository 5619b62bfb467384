#pragma once

namespace VeskLib::VeskUi {

// Every request that the program sends to the back-end. The numbers are the back-end's.
enum RequestNumber : unsigned int {
    GET_PARTITION_INFO = 0x0201002F,     // getInfo, PartitionInfoPacket
    GET_HARD_INSTALL_INFO = 0x02010021,  // getInfo, HardInstallInfoPacket
    GET_VERSION_INFO = 0x02010201,       // getInfo, VersionInfoPacket
    SET_BACKUP = 0x020100A3,   // setInfo, PrimitiveTypeWrapper<unsigned int>: the partition
    SET_RESTORE = 0x020100A4,  // setInfo, PrimitiveTypeArray<unsigned char>: the targets
};

}  // namespace VeskLib::VeskUi
