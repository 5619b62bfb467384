#include "platform/host/storage/ConfigurationFile.h"
#include "tests/support/files.h"
#include "tests/support/sessions.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <filesystem>

namespace VeskLib::Test {

namespace {

using testing::HasSubstr;

const int LOGIN_NEEDED = 9026;
const int DOWNLOAD_NOT_ALLOWED = 9202;
const int NOT_A_DOWNLOAD = 9203;
const int NO_SUCH_BACKUP = 9204;

const char* const NAME = "Partition3_20261114_123B.dat";

std::string toText(const Host::ConfigurationFile& file) {
    const std::vector<unsigned char> bytes = Host::encode(file);
    return {bytes.begin(), bytes.end()};
}

// A session with the right to make backups, and a backup of partition 3.
class DownloadTest : public WebTest {
protected:
    DownloadTest() {
        file.saveTime = 1794657600;  // 2026-11-14 12:00 UTC
        file.partition = 3;
        file.version = "1.23 B";
        file.partitionName = "Alpha";
        for (int i = 0; i < 70000; ++i) {
            file.payload.push_back(static_cast<unsigned char>(i * 7));
        }
        storeBackup(toText(file));
    }

    std::string backupPath() const { return boardFile("/var/tmp/efi_backup" + session.identifier); }

    void storeBackup(const std::string& bytes) const { writeText(backupPath(), bytes); }

    static CGIResponse run(WebRequest request) {
        request.more.emplace("TZ", "UTC");
        return runWebProgram(DOWNLOAD_PROGRAM, request);
    }

    // Requests `name` with the session's cookie; `name` goes unencoded into the query string.
    CGIResponse download(const std::string& name) const {
        return run({.query = "functionID=5&filename=" + name, .cookie = cookieOf(session)});
    }

    const Host::Session session = startSession("admin", false, ",105,");
    Host::ConfigurationFile file;
};

TEST_F(DownloadTest, sendsWholeBackupUnderItsName) {
    const CGIResponse response = download(NAME);
    EXPECT_EQ(response.status, "200 OK");
    EXPECT_EQ(response.header("Content-Type"), "application/octet-stream");
    EXPECT_EQ(response.header("Content-Disposition"),
              std::string("attachment; filename=\"") + NAME + "\"");
    EXPECT_EQ(response.body, toText(file));
}

TEST_F(DownloadTest, backupRemainsAfterDownload) {
    download(NAME);
    EXPECT_EQ(download(NAME).body, toText(file));
}

TEST_F(DownloadTest, acceptsNameWithoutPartition) {
    EXPECT_EQ(download("BIOS_20261114_123B.dat").body, toText(file));
}

TEST_F(DownloadTest, largestFileIsSentWhole) {
    file.payload.assign(Host::LARGEST_CONFIGURATION_FILE, 7);
    while (toText(file).empty()) {
        file.payload.resize(file.payload.size() - 1);
    }
    storeBackup(toText(file));
    EXPECT_EQ(download(NAME).body.size(), Host::LARGEST_CONFIGURATION_FILE);
}

TEST_F(DownloadTest, headSendsOnlyTheLength) {
    const CGIResponse response = run({.method = "HEAD",
                                      .query = std::string("functionID=5&filename=") + NAME,
                                      .cookie = cookieOf(session)});
    EXPECT_EQ(response.status, "200 OK");
    EXPECT_EQ(response.header("Content-Length"), std::to_string(toText(file).size()));
}

TEST_F(DownloadTest, sendsNonASCIINameInBothForms) {
    file.version = "1.2 \xE7\x89\x88";
    storeBackup(toText(file));
    const CGIResponse response = download("Partition3_20261114_12%E7%89%88.dat");
    EXPECT_EQ(response.header("Content-Disposition"),
              "attachment; filename=\"Partition3_20261114_12_.dat\"; "
              "filename*=UTF-8''Partition3_20261114_12%E7%89%88.dat");
    EXPECT_EQ(response.body, toText(file));
}

TEST_F(DownloadTest, replacesUnsafeCharactersInName) {
    file.version = "../1\"2";
    storeBackup(toText(file));
    const CGIResponse response = download("Partition3_20261114_%2F1%222.dat");
    EXPECT_EQ(response.header("Content-Disposition"),
              "attachment; filename=\"Partition3_20261114__1_2.dat\"");
    EXPECT_EQ(response.body, toText(file));
    for (const char* name : {"Partition3_20261114_..%2F1%222.dat", "Partition3_20261114_x%222.dat",
                             "Partition3_20261114_%2F..%2F..%2Fetc%2Fpasswd.dat"}) {
        expectPage(download(name), "404 Not Found", caption(NO_SUCH_BACKUP));
    }
}

TEST_F(DownloadTest, dateIsInTheBoardsTimeZone) {
    const auto downloadAs = [this](const std::string& name) {
        return run({.query = "functionID=5&filename=" + name,
                    .cookie = cookieOf(session),
                    .more = {{"TZ", "EST-13"}}});
    };
    EXPECT_EQ(downloadAs("Partition3_20261115_123B.dat").status, "200 OK");
    expectPage(downloadAs(NAME), "404 Not Found", caption(NO_SUCH_BACKUP));
}

TEST_F(DownloadTest, otherNamesAreRefused) {
    for (const char* name :
         {"", "x", "../../etc/passwd", "/etc/passwd", "%2Fetc%2Fpasswd", "..%5C..%5Cx.dat",
          "../Partition3_20261114_123B.dat", "Partition3_20261114_123B.dat%0D%0ASet-Cookie:%20x=y",
          "Partition3_20261114_a%0D%0AX:%20y.dat", "Partition3_20261114_a%0Ab.dat",
          "Partition3_20261114_a%00b.dat", "Partition3_20261114_123B.dat%00.txt",
          "Partition3_20261114_%FF.dat", "Partition3_20261114_123B.txt",
          "Partition_20261114_123B.dat", "efi_backup"}) {
        expectPage(download(name), "400 Bad Request", caption(NOT_A_DOWNLOAD));
    }
}

TEST_F(DownloadTest, otherFunctionsAreRefused) {
    const std::string name = std::string("&filename=") + NAME;
    for (const char* function : {"", "functionID=", "functionID=105", "functionID=05",
                                 "functionID=5%20", "functionID=5x", "functionID=-5"}) {
        expectPage(run({.query = function + name, .cookie = cookieOf(session)}), "400 Bad Request",
                   caption(NOT_A_DOWNLOAD));
    }
    expectPage(run({.query = "functionID=5", .cookie = cookieOf(session)}), "400 Bad Request",
               caption(NOT_A_DOWNLOAD));
    expectPage(run({.cookie = cookieOf(session)}), "400 Bad Request", caption(NOT_A_DOWNLOAD));
}

TEST_F(DownloadTest, oversizedQueryIsRefused) {
    expectPage(download(std::string(20000, 'a')), "413 Content Too Large", "1108");
}

TEST_F(DownloadTest, nameOfAnotherBackupIsNotFound) {
    for (const char* name : {"Partition2_20261114_123B.dat", "Partition3_20261113_123B.dat",
                             "Partition3_20261114_124B.dat", "Partition3_20261114_Unknown.dat",
                             "BIOS_20261113_123B.dat"}) {
        expectPage(download(name), "404 Not Found", caption(NO_SUCH_BACKUP));
    }
}

TEST_F(DownloadTest, missingBackupIsNotFound) {
    std::filesystem::remove(backupPath());
    expectPage(download(NAME), "404 Not Found", caption(NO_SUCH_BACKUP));
    EXPECT_THAT(trace(), HasSubstr("cannot be read (errno:2)"));
}

TEST_F(DownloadTest, damagedFileIsNotFound) {
    const std::string whole = toText(file);
    std::string changed = whole;
    changed[whole.size() / 2] = static_cast<char>(changed[whole.size() / 2] ^ 1);
    for (const std::string& bytes : {std::string(), std::string("nonsense"), changed,
                                     whole.substr(0, whole.size() - 1), whole + "x"}) {
        storeBackup(bytes);
        expectPage(download(NAME), "404 Not Found", caption(NO_SUCH_BACKUP));
    }
    EXPECT_THAT(trace(), HasSubstr("is not a configuration file"));
}

TEST_F(DownloadTest, oversizedFileIsNotFound) {
    storeBackup(std::string(Host::LARGEST_CONFIGURATION_FILE + 1, 'x'));
    expectPage(download(NAME), "404 Not Found", caption(NO_SUCH_BACKUP));
}

TEST_F(DownloadTest, linkIsNotFollowed) {
    const std::string elsewhere = boardFile("/var/tmp/elsewhere");
    std::filesystem::rename(backupPath(), elsewhere);
    ASSERT_EQ(::symlink(elsewhere.c_str(), backupPath().c_str()), 0);
    expectPage(download(NAME), "404 Not Found", caption(NO_SUCH_BACKUP));
}

TEST_F(DownloadTest, folderIsNotFound) {
    std::filesystem::remove(backupPath());
    std::filesystem::create_directory(backupPath());
    expectPage(download(NAME), "404 Not Found", caption(NO_SUCH_BACKUP));
}

TEST_F(DownloadTest, downloadNeedsALogin) {
    const Host::Session expired = startSession("admin", true, "");
    expire(expired);
    for (const std::string& cookie :
         {std::string(), "session=" + session.identifier,
          "session=" + session.identifier + "-00000000000000000000000000000000",
          cookieOf(expired)}) {
        expectPage(run({.query = std::string("functionID=5&filename=") + NAME, .cookie = cookie}),
                   "403 Forbidden", caption(LOGIN_NEEDED));
    }
}

// Only those who may download learn what is wrong with a name.
TEST_F(DownloadTest, sessionIsCheckedBeforeTheName) {
    expectPage(run({.query = "functionID=5&filename=x"}), "403 Forbidden", caption(LOGIN_NEEDED));
}

TEST_F(DownloadTest, downloadNeedsTheBackupFunction) {
    const Host::Session viewer = startSession("viewer", false, ",106,");
    writeText(boardFile("/var/tmp/efi_backup" + viewer.identifier), toText(file));
    expectPage(
        run({.query = std::string("functionID=5&filename=") + NAME, .cookie = cookieOf(viewer)}),
        "403 Forbidden", caption(DOWNLOAD_NOT_ALLOWED));
}

TEST_F(DownloadTest, backupOfAnotherSessionIsNotFound) {
    const Host::Session other = startSession("admin", true, "");
    expectPage(
        run({.query = std::string("functionID=5&filename=") + NAME, .cookie = cookieOf(other)}),
        "404 Not Found", caption(NO_SUCH_BACKUP));
}

TEST_F(DownloadTest, postIsNotAllowed) {
    const CGIResponse response = run({.method = "POST",
                                      .form = std::string("functionID=5&filename=") + NAME,
                                      .cookie = cookieOf(session)});
    expectPage(response, "405 Method Not Allowed", caption(9010));
    EXPECT_EQ(response.header("Allow"), "GET, HEAD");
}

}  // namespace

}  // namespace VeskLib::Test
