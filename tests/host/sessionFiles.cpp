#include "tests/host/sessionFiles.h"

#include "tests/support/BoardTest.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <vector>

namespace VeskLib::Test {

std::string sessionFile(const std::string& identifier) {
    return boardFile("/var/lib/session/" + identifier);
}

std::string backupFile(const std::string& identifier) {
    return boardFile("/var/tmp/efi_backup" + identifier);
}

std::string stagingFile(const std::string& identifier) {
    return boardFile("/var/tmp/restored_eficonf" + identifier);
}

void setAge(const std::string& path, std::time_t seconds) {
    const timespec moment = {.tv_sec = std::time(nullptr) - seconds, .tv_nsec = 0};
    const timespec times[] = {moment, moment};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

void setField(const Host::Session& session, const std::string& field, const std::string& value) {
    const std::string path = sessionFile(session.identifier);
    const std::string start = field + "=";
    const std::string changed = start + value;
    std::string text;
    for (const std::string& line : linesOf(readText(path))) {
        text += line.starts_with(start) ? changed : line;
        text += '\n';
    }
    writeText(path, text);
}

bool isLetIn(const std::string& cookieValue) {
    Host::Session session;
    return Host::findSession(cookieValue, session);
}

}  // namespace VeskLib::Test
