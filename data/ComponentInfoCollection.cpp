#include "data/ComponentInfoCollection.h"

#include "data/PrimitiveTypeArray.h"
#include "data/WireCursor.h"
#include "data/containerExceptions.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace VeskLib::VeskUi {

namespace {

const unsigned int COUNT_SIZE = 2;
const unsigned int LENGTH_SIZE = 2;

}  // namespace

template <typename Element>
unsigned int ComponentInfoCollection<Element>::getSerialized(unsigned char* buffer,
                                                             unsigned int size) const {
    if (getSerializedSize() > size) {
        throw makeDifferentBufferSize("ComponentInfoCollection::getSerialized");
    }
    WireWriter(buffer, COUNT_SIZE).writeU16(static_cast<std::uint16_t>(elements.size()));
    unsigned int position = COUNT_SIZE;
    for (const auto& element : elements) {
        const unsigned int length = element->getSerializedSize();
        WireWriter(buffer + position, LENGTH_SIZE).writeU16(static_cast<std::uint16_t>(length));
        position += LENGTH_SIZE;
        element->getSerialized(buffer + position, length);
        position += length;
    }
    return position;
}

template <typename Element>
unsigned int ComponentInfoCollection<Element>::getSerializedSize() const {
    unsigned int size = COUNT_SIZE;
    for (const auto& element : elements) {
        size += LENGTH_SIZE + element->getSerializedSize();
    }
    return size;
}

template <typename Element>
bool ComponentInfoCollection<Element>::setSerialized(const unsigned char* buffer,
                                                     unsigned int size) {
    WireReader reader(buffer, size);
    const unsigned int count = reader.readU16();
    for (unsigned int i = 0; i < count && !reader.failed(); ++i) {
        const unsigned int length = reader.readU16();
        const unsigned char* bytes = reader.readBytes(length);
        if (reader.failed()) {
            break;
        }
        auto element = std::make_unique<Element>();
        // An element that rejects its bytes stays empty, and keeps its place in the list.
        element->setSerialized(bytes, length);
        elements.push_back(std::move(element));
    }
    const bool trailingBytes = count != 0 && reader.remaining() != 0;
    if (reader.failed() || trailingBytes) {
        throw makeDifferentBufferSize("ComponentInfoCollection::setSerialized");
    }
    return true;
}

template class ComponentInfoCollection<PrimitiveTypeArray<unsigned char>>;

}  // namespace VeskLib::VeskUi
