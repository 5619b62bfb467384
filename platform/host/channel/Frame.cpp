#include "platform/host/channel/Frame.h"

#include "data/WireCursor.h"
#include "platform/host/channel/WireText.h"

#include <utility>

namespace VeskLib::Host {

namespace {

const std::size_t KIND_SIZE = 1;
const std::size_t NUMBER_SIZE = 4;
const std::size_t ERROR_CODE_SIZE = 4;

bool isRequestKind(std::uint8_t kind) {
    return kind >= static_cast<std::uint8_t>(RequestKind::GET) &&
           kind <= static_cast<std::uint8_t>(RequestKind::CONTROL);
}

// Reads the bytes after the parsed fields.
std::vector<unsigned char> readRest(VeskUi::WireReader& reader) {
    const std::size_t count = reader.remaining();
    const unsigned char* rest = reader.readBytes(count);
    return {rest, rest + count};
}

}  // namespace

std::vector<unsigned char> encode(const RequestFrame& frame) {
    std::vector<unsigned char> bytes(
        KIND_SIZE + NUMBER_SIZE + wireTextSize(frame.sessionIdentifier) +
        wireTextSize(frame.address) + wireTextSize(frame.requestIdentifier) +
        wireTextSize(frame.stagedFile) + frame.payload.size());
    VeskUi::WireWriter writer(bytes.data(), bytes.size());
    writeU8(writer, static_cast<std::uint8_t>(frame.kind));
    writer.writeU32(frame.number);
    writeWireText(writer, frame.sessionIdentifier);
    writeWireText(writer, frame.address);
    writeWireText(writer, frame.requestIdentifier);
    writeWireText(writer, frame.stagedFile);
    writer.writeBytes(frame.payload.data(), frame.payload.size());
    return bytes;
}

std::vector<unsigned char> encode(const ReplyFrame& frame) {
    std::vector<unsigned char> bytes(ERROR_CODE_SIZE + frame.payload.size());
    VeskUi::WireWriter writer(bytes.data(), bytes.size());
    writer.writeU32(frame.errorCode);
    writer.writeBytes(frame.payload.data(), frame.payload.size());
    return bytes;
}

bool decode(const std::vector<unsigned char>& bytes, RequestFrame& frame) {
    VeskUi::WireReader reader(bytes.data(), bytes.size());
    RequestFrame read;
    const std::uint8_t kind = readU8(reader);
    read.number = reader.readU32();
    read.sessionIdentifier = readWireText(reader);
    read.address = readWireText(reader);
    read.requestIdentifier = readWireText(reader);
    read.stagedFile = readWireText(reader);
    if (reader.failed() || !isRequestKind(kind)) {
        return false;
    }
    read.kind = static_cast<RequestKind>(kind);
    read.payload = readRest(reader);
    frame = std::move(read);
    return true;
}

bool decode(const std::vector<unsigned char>& bytes, ReplyFrame& frame) {
    VeskUi::WireReader reader(bytes.data(), bytes.size());
    ReplyFrame read;
    read.errorCode = reader.readU32();
    if (reader.failed()) {
        return false;
    }
    read.payload = readRest(reader);
    frame = std::move(read);
    return true;
}

}  // namespace VeskLib::Host
