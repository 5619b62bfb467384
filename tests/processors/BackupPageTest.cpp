// Tests that the program, built for a board and run as a CGI program, prints the same bytes on
// every processor.

#include "platform/host/session/Session.h"
#include "tests/processors/expectedBytes.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"
#include "tests/support/sessions.h"
#include "tests/web/FakeBackend.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>

#include <regex>

namespace VeskLib::Test {

namespace {

std::vector<unsigned char> fourPartitions() {
    VeskUi::PartitionInfoPacket packet;
    packet.addPartition({.installed = true, .name = "Order processing", .nodeIds = {0x10, 0x21}});
    packet.addPartition({});
    packet.addPartition({.installed = true, .name = "\xE8\xA3\xBD\xE9\x80\xA0", .nodeIds = {}});
    packet.addPartition({.installed = true, .name = "<\"R&D\">", .nodeIds = {0x12}});
    std::vector<unsigned char> bytes(packet.getSerializedSize());
    packet.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return bytes;
}

class BackupPageTest : public BoardTest {
protected:
    BackupPageTest() { writeText(boardFile("/var/run/board_properties"), "max_partitions=4\n"); }

    // Returns the response to a logged-in operator with this language, without times and nonces.
    static std::string answer(const std::string& language) {
        const Host::Session session = startSession("admin", true, "");
        const FakeBackend backend(Host::ReplyFrame{0, fourPartitions()});
        ChildSetup setup;
        setup.environment = {{"REQUEST_METHOD", "GET"},
                             {"QUERY_STRING", "functionID=105"},
                             {"HTTP_ACCEPT_LANGUAGE", language},
                             {"HTTP_COOKIE", "session=" + session.cookieValue()}};
        const ChildResult result = runProgram({EFI_BACKUP_RESTORE}, setup);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.errors, "");
        return withoutTimes(withoutNonce(result.output));
    }

    // Returns `page` with zeros in place of the digits of the session's remaining time.
    static std::string withoutTimes(const std::string& page) {
        const std::regex start("<p id=\"session\"[^\n]*");
        std::smatch line;
        if (!std::regex_search(page, line, start)) {
            ADD_FAILURE() << "no session";
            return page;
        }
        return line.prefix().str() + std::regex_replace(line.str(), std::regex("[0-9]"), "0") +
               line.suffix().str();
    }

    // Returns `page` with zeros in place of the nonce of its scripts.
    static std::string withoutNonce(std::string page) {
        const std::string introduction = "'nonce-";
        const std::size_t length = 32;
        const std::size_t start = page.find(introduction);
        if (start == std::string::npos) {
            ADD_FAILURE() << "no nonce";
            return page;
        }
        const std::string nonce = page.substr(start + introduction.size(), length);
        for (std::size_t at = page.find(nonce); at != std::string::npos; at = page.find(nonce)) {
            page.replace(at, length, length, '0');
        }
        return page;
    }
};

}  // namespace

TEST_F(BackupPageTest, englishPageMatchesExpectedBytes) {
    expectBytes(answer("en"), "backup_page_en.txt");
}

TEST_F(BackupPageTest, japanesePageMatchesExpectedBytes) {
    expectBytes(answer("ja"), "backup_page_ja.txt");
}

}  // namespace VeskLib::Test
