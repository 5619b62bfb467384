#include "platform/host/channel/RefusalDetails.h"

#include "data/WireCursor.h"
#include "platform/host/channel/WireText.h"

#include <utility>

namespace VeskLib::Host {

namespace {

const std::size_t NUMBER_SIZE = 4;

struct LastRefusal {
    int code = 0;
    RefusalDetails details;
};

LastRefusal& lastRefusal() {
    static LastRefusal last;
    return last;
}

}  // namespace

std::vector<unsigned char> encode(const RefusalDetails& details) {
    if (details.partitions.empty()) {
        return {};
    }
    std::size_t size = wireTextSize(details.fileVersion);
    for (const RefusalDetails::Partition& partition : details.partitions) {
        size += NUMBER_SIZE + wireTextSize(partition.version);
    }
    std::vector<unsigned char> bytes(size);
    VeskUi::WireWriter writer(bytes.data(), bytes.size());
    writeWireText(writer, details.fileVersion);
    for (const RefusalDetails::Partition& partition : details.partitions) {
        writer.writeU32(partition.number);
        writeWireText(writer, partition.version);
    }
    return bytes;
}

bool decode(const std::vector<unsigned char>& bytes, RefusalDetails& details) {
    VeskUi::WireReader reader(bytes.data(), bytes.size());
    RefusalDetails read;
    read.fileVersion = readWireText(reader);
    while (!reader.failed() && reader.remaining() > 0) {
        RefusalDetails::Partition& partition = read.partitions.emplace_back();
        partition.number = reader.readU32();
        partition.version = readWireText(reader);
    }
    if (reader.failed() || read.partitions.empty()) {
        return false;
    }
    details = std::move(read);
    return true;
}

const RefusalDetails& refusalDetails(int code) {
    static const RefusalDetails NONE;
    return lastRefusal().code == code ? lastRefusal().details : NONE;
}

void noteRefusal(int code, const std::vector<unsigned char>& payload) {
    lastRefusal() = {.code = code, .details = {}};
    decode(payload, lastRefusal().details);
}

}  // namespace VeskLib::Host
