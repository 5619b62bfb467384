#pragma once

#include "board/backend/BoardService.h"
#include "data/requestNumbers.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Login.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/requests.h"
#include "tests/backend/support/sampleBoard.h"
#include "tests/support/sessions.h"

#include <crypt.h>

#include <filesystem>
#include <string>

namespace VeskLib::Test {

using namespace Board;
using namespace Host;

// Fixture for BoardService on the sample board, with a session and two users. The stored state
// persists from one request to the next.
class BoardServiceTest : public RootTest {
protected:
    BoardServiceTest() {
        std::filesystem::create_directory(at("state"));
        crypt_data work = {};
        const std::string hash = ::crypt_r("secret", "$1$saltsalt$", &work);
        board.users.push_back({"admin", hash, {false, ",105,106,"}});
        writeSession(COOKIE, "admin");
        board.users.push_back({"root", hash, {true, ""}});
    }

    // Sends a request to a new service that reads the state stored by the last one.
    ReplyFrame ask(const RequestFrame& request) const {
        ConfigurationStore store(at("state/configurations"), board);
        FaultSwitches switches;
        return BoardService(board, store, switches, lockPath).answer(request);
    }

    unsigned int code(RequestKind kind, unsigned int number, const Bytes& payload,
                      const std::string& session = SESSION) const {
        const ReplyFrame reply = ask({kind, number, session, payload});
        return reply.errorCode;
    }

    unsigned int backup(unsigned char partition) const {
        return code(RequestKind::SET, VeskUi::SET_BACKUP, {0, 0, 0, partition});
    }

    unsigned int restore(const Bytes& targets) const {
        Bytes payload = {0, static_cast<unsigned char>(targets.size())};
        payload.insert(payload.end(), targets.begin(), targets.end());
        return code(RequestKind::SET, VeskUi::SET_RESTORE, payload);
    }

    ReplyFrame login(const std::string& user, const std::string& password) const {
        return ask({RequestKind::LOGIN, 0, "", encode(LoginRequest{user, password, "192.0.2.1"})});
    }

    // Returns the partition's configuration.
    std::string configurationOf(unsigned int partition) const {
        const Bytes payload = ConfigurationStore(at("state/configurations"), board).read(partition);
        return {payload.begin(), payload.end()};
    }

    std::string allConfigurations() const {
        std::string all;
        for (unsigned int partition = 0; partition < board.partitions.size(); ++partition) {
            all += configurationOf(partition) + ";";
        }
        return all;
    }

    // Stages a file for the session.
    void stage(const ConfigurationFile& file) const { writeBytes(stagingPath, encode(file)); }

    static ConfigurationFile makeFile(const std::string& version, const std::string& payload) {
        ConfigurationFile file;
        file.saveTime = 1;
        file.partition = 77;
        file.version = version;
        file.partitionName = "from elsewhere";
        file.payload.assign(payload.begin(), payload.end());
        return file;
    }

    const std::string lockPath = at("restore.lock");
    const std::string backupPath = at(std::string("efi_backup") + SESSION);
    const std::string stagingPath = at(std::string("restored_eficonf") + SESSION);
    BoardDescription board = makeSampleBoard();
    const std::string initial = "zero;one;two;three;four;;";
};

}  // namespace VeskLib::Test
