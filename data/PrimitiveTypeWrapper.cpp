#include "data/PrimitiveTypeWrapper.h"

#include "data/WireCursor.h"
#include "data/containerExceptions.h"

namespace VeskLib::VeskUi {

namespace {

const unsigned int WIRE_SIZE = 4;

}  // namespace

unsigned int PrimitiveTypeWrapper<unsigned int>::getSerialized(unsigned char* buffer,
                                                               unsigned int size) const {
    if (size < WIRE_SIZE) {
        throw makeBufferTooSmall(WRAPPER_MODULE, "Too short size");
    }
    WireWriter(buffer, WIRE_SIZE).writeU32(value);
    return WIRE_SIZE;
}

unsigned int PrimitiveTypeWrapper<unsigned int>::getSerializedSize() const {
    return WIRE_SIZE;
}

bool PrimitiveTypeWrapper<unsigned int>::setSerialized(const unsigned char* buffer,
                                                       unsigned int size) {
    if (size > WIRE_SIZE) {
        return false;
    }
    // Reads four bytes whatever `size` is; see the header.
    value = WireReader(buffer, WIRE_SIZE).readU32();
    return true;
}

}  // namespace VeskLib::VeskUi
