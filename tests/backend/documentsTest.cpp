// Generates the worked examples of the documents and searches the documents for them, so that code
// and documents cannot diverge.

#include "board/backend/StoredConfigurations.h"
#include "board/backend/controlOrder.h"
#include "data/HardInstallInfoPacket.h"
#include "data/requestNumbers.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Frame.h"
#include "platform/host/channel/Login.h"
#include "platform/host/channel/boardRecords.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/hexadecimalText.h"
#include "tests/backend/support/requests.h"
#include "tests/support/files.h"
#include "tests/unit/support/wireBytes.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace VeskLib::Test {

using namespace Host;

namespace {

// Returns the document as one line, with words separated by single blanks.
std::string wordsOf(const std::string& name) {
    std::istringstream stream(readText(std::string(DOCUMENTS) + "/" + name));
    std::string words = " ";
    for (std::string word; stream >> word;) {
        words += word + " ";
    }
    return words;
}

void expectExample(const std::string& document, const Bytes& bytes) {
    const std::string text = " " + toHexadecimal(bytes) + " ";
    EXPECT_NE(wordsOf(document).find(text), std::string::npos) << document << ":" << text;
}

void expectRequest(RequestKind kind, unsigned int number, const Bytes& payload) {
    const std::string session = kind == RequestKind::LOGIN ? "" : SESSION;
    RequestFrame request = {kind, number, session, payload};
    if (kind == RequestKind::SET) {
        request.address = "::1";
        request.requestIdentifier = "7-9";
    }
    expectExample("wire-formats.md", framed(encode(request)));
}

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

void expectReply(unsigned int code, const Bytes& payload) {
    expectExample("wire-formats.md", framed(encode(ReplyFrame{code, payload})));
}

}  // namespace

TEST(documents, showEveryRequest) {
    expectRequest(RequestKind::GET, VeskUi::GET_PARTITION_INFO, {});
    expectRequest(RequestKind::GET, VeskUi::GET_HARD_INSTALL_INFO, {});
    expectRequest(RequestKind::GET, VeskUi::GET_VERSION_INFO, {});
    expectRequest(RequestKind::SET, VeskUi::SET_BACKUP, {0, 0, 0, 3});
    expectRequest(RequestKind::SET, VeskUi::SET_RESTORE, {0, 2, 1, 3});
    expectRequest(RequestKind::LOGIN, 0, encode(LoginRequest{"admin", "pass", "::1", ""}));
}

TEST(documents, showReplyWithoutPayload) {
    expectReply(0, {});
    expectReply(BACKEND_LOGIN_REFUSED, {});
}

TEST(documents, showNewDevice) {
    expectReply(0, encode(LoginAnswer{"0123456789abcdef0123456789abcdef"}));
}

TEST(documents, showPartitionTable) {
    VeskUi::PartitionInfoPacket packet;
    packet.addPartition({true, "Test", {0x13, 0x21}});
    packet.addPartition({});
    expectReply(0, serialize(packet));
}

TEST(documents, showInstalledHardware) {
    VeskUi::HardInstallInfoPacket packet;
    packet.systemBoards.records = {{BOARD_INSTALLED}, {BOARD_INSTALLED | BOARD_IS_HOME}};
    packet.ioBoards.records = {{BOARD_INSTALLED, 0}};
    expectReply(0, serialize(packet));
}

TEST(documents, showFirmwareVersions) {
    VeskUi::VersionInfoPacket packet;
    packet.addBIOSVersion("1.23 B");
    packet.addBIOSVersion("-");
    expectReply(0, serialize(packet));
}

TEST(documents, showOrderOfBoardctl) {
    const std::string order = "torn 6 2";
    Board::FaultSwitches switches;
    const std::string answer = Board::carryOutOrder(order, switches);
    expectExample("wire-formats.md",
                  framed(encode(RequestFrame{RequestKind::CONTROL, 0, "", bytesOf(order)})));
    expectReply(0, bytesOf(answer));
}

TEST(documents, showConfigurationFile) {
    ConfigurationFile file;
    file.saveTime = 1236384000;
    file.partition = 3;
    file.version = "1.23 B";
    file.partitionName = "Test";
    file.payload = {'B', 'o', 'o', 't', '=', '1', '\n'};
    expectExample("configuration-file.md", encode(file));
}

TEST(documents, showStateFile) {
    expectExample("configuration-file.md", Board::encode(Board::Payloads{{0, {'A'}}, {3, {}}}));
}

}  // namespace VeskLib::Test
