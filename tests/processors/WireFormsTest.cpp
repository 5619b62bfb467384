// Tests that everything sent between processes or stored in a file has the same bytes on every
// processor. There is one sample of each kind, with numbers in which no two bytes are equal.

#include "data/HardInstallInfoPacket.h"
#include "data/PrimitiveTypeWrapper.h"
#include "platform/host/channel/Frame.h"
#include "platform/host/channel/Login.h"
#include "platform/host/channel/refusalPayload.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "tests/backend/support/hexadecimalText.h"
#include "tests/processors/expectedBytes.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gtest/gtest.h>

#include <memory>

namespace VeskLib::Test {

using namespace VeskUi;

namespace {

const std::uint32_t WORD = 0x81C2E3F4;
const std::uint16_t HALF_WORD = 0x95A6;

// Collects lines of the form "name: bytes".
class WireForms {
public:
    void add(const std::string& name, const Bytes& bytes) {
        text += name + ": " + toHexadecimal(bytes) + "\n";
    }

    // Adds a serializable object, and expects it to survive a round trip unchanged.
    template <typename Object>
    void add(const std::string& name, const Object& object) {
        const Bytes bytes = serialize(object);
        add(name, bytes);
        Object read;
        EXPECT_TRUE(deserialize(read, bytes)) << name;
        EXPECT_EQ(toHexadecimal(serialize(read)), toHexadecimal(bytes)) << name;
    }

    // Adds a frame, a login or a file, which have encode() and decode(), and expects the same.
    template <typename Coded>
    void addCoded(const std::string& name, const Coded& coded) {
        const Bytes bytes = encode(coded);
        add(name, bytes);
        Coded read;
        EXPECT_TRUE(decode(bytes, read)) << name;
        EXPECT_EQ(toHexadecimal(encode(read)), toHexadecimal(bytes)) << name;
    }

    std::string text;
};

template <typename Record>
PrimitiveTypeArray<Record> arrayOf(const std::vector<Record>& records) {
    PrimitiveTypeArray<Record> array;
    array.records = records;
    return array;
}

void fill(ComponentInfoCollection<PrimitiveTypeArray<unsigned char>>& collection) {
    auto element = std::make_unique<PrimitiveTypeArray<unsigned char>>();
    element->records = {0xFF, 0x00, 0x7F};
    collection.elements.push_back(std::move(element));
    collection.elements.push_back(std::make_unique<PrimitiveTypeArray<unsigned char>>());
}

void addContainers(WireForms& forms) {
    PrimitiveTypeWrapper<unsigned int> number;
    number.value = WORD;
    forms.add("PrimitiveTypeWrapper", number);
    forms.add("PrimitiveTypeArray of bytes", arrayOf<unsigned char>({0x80, 0x00, 0xFE}));
    forms.add("PrimitiveTypeArray of 300 bytes",
              arrayOf<unsigned char>(std::vector<unsigned char>(300, 0x5A)));
    forms.add("PrimitiveTypeArray of SBData",
              arrayOf<HardInstallInfoPacket::SBData>({{WORD}, {1}}));
    forms.add("PrimitiveTypeArray of IOBData",
              arrayOf<HardInstallInfoPacket::IOBData>({{WORD, HALF_WORD}, {1, 2}}));
    forms.add("PrimitiveTypeArray of GSPBData",
              arrayOf<HardInstallInfoPacket::GSPBData>({{WORD, HALF_WORD}, {1, 2}}));
    ComponentInfoCollection<PrimitiveTypeArray<unsigned char>> collection;
    fill(collection);
    forms.add("ComponentInfoCollection", collection);
}

void addPackets(WireForms& forms) {
    HardInstallInfoPacket boards;
    boards.systemBoards.records = {{0xC0000000}, {0x80000000}};
    fill(boards.firstBoards);
    boards.ioBoards.records = {{WORD, HALF_WORD}};
    boards.gspBoards.records = {{HALF_WORD, 1}};
    boards.byteArrays[5].records = {0xAB};
    forms.add("HardInstallInfoPacket", boards);
    PartitionInfoPacket partitions;
    partitions.addPartition({.installed = true, .name = "A\xC3\xA9", .nodeIds = {0x10, 0x81}});
    partitions.addPartition({.installed = false, .name = std::string(258, 'n'), .nodeIds = {}});
    forms.add("PartitionInfoPacket", partitions);
    VersionInfoPacket versions;
    versions.addBIOSVersion("10.20 B");
    versions.addBIOSVersion("-");
    forms.add("VersionInfoPacket", versions);
}

void addFramesAndFiles(WireForms& forms) {
    forms.addCoded(
        "request frame",
        Host::RequestFrame{
            Host::RequestKind::SET, WORD, "0123456789abcdef", {1, 0xFF}, "::1", "7-9", "ab"});
    forms.addCoded("reply frame", Host::ReplyFrame{WORD, {0xFE, 2}});
    forms.addCoded("refusal details", Host::RefusalDetails{"10.20 B", {{WORD, "-"}, {7, ""}}});
    forms.addCoded("login request", Host::LoginRequest{"admin", "p\xC3\xA4ss", "192.0.2.1", "0a"});
    forms.addCoded("login answer", Host::LoginAnswer{"0a"});
    forms.addCoded("configuration file", Host::ConfigurationFile{.saveTime = WORD,
                                                                 .partition = 0x01020304,
                                                                 .version = "10.20 B",
                                                                 .partitionName = "A\xC3\xA9",
                                                                 .payload = {0x00, 0xFF, 0x10}});
}

}  // namespace

TEST(WireFormsTest, everyWireFormMatchesExpectedBytes) {
    WireForms forms;
    addContainers(forms);
    addPackets(forms);
    addFramesAndFiles(forms);
    expectBytes(forms.text, "wire_forms.txt");
}

}  // namespace VeskLib::Test
