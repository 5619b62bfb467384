#include "platform/host/session/Session.h"

#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "tests/host/sessionFiles.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <map>
#include <set>

namespace VeskLib::Test {

using Host::Session;
using testing::IsEmpty;

namespace {

// Makes system calls that read a file's status fail with EPERM in this process from now on, as a
// security module might.
void denyStatus() {
    sock_filter rules[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_newfstatat, 1, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fstat, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program = {.len = std::size(rules), .filter = rules};
    ASSERT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

}  // namespace

class SessionTest : public BoardTest {
protected:
    static Session start() { return Host::startSession("operator"); }

    // Returns the session with this cookie value, or one without an identifier if there is none.
    static Session find(const std::string& cookieValue) {
        Session session;
        Host::findSession(cookieValue, session);
        return session;
    }
};

TEST_F(SessionTest, findsSessionByCookie) {
    const std::time_t before = std::time(nullptr);
    const Session started = start();
    const Session found = find(started.cookieValue());
    EXPECT_EQ(found.identifier, started.identifier);
    EXPECT_EQ(found.token, started.token);
    EXPECT_EQ(found.user, "operator");
    EXPECT_EQ(found.created, started.created);
    EXPECT_GE(found.created, before);
    EXPECT_LE(found.created, std::time(nullptr));
}

TEST_F(SessionTest, cookieIsIdentifierAndToken) {
    const Session session = start();
    EXPECT_EQ(session.cookieValue(), session.identifier + "-" + session.token);
    EXPECT_TRUE(Host::isCookieValue(session.cookieValue()));
    EXPECT_EQ(Host::identifierOf(session.cookieValue()), session.identifier);
}

TEST_F(SessionTest, givesEverySessionNewIdentifierAndToken) {
    const std::size_t count = 200;
    std::set<std::string> identifiers;
    std::set<std::string> tokens;
    for (std::size_t i = 0; i < count; ++i) {
        const Session session = start();
        identifiers.insert(session.identifier);
        tokens.insert(session.token);
        EXPECT_EQ(session.token.find(session.identifier), std::string::npos);
    }
    EXPECT_EQ(identifiers.size(), count);
    EXPECT_EQ(tokens.size(), count);
}

TEST_F(SessionTest, variesEveryDigitOfSecret) {
    std::vector<std::set<char>> seen;
    for (int i = 0; i < 200; ++i) {
        const Session session = start();
        const std::string digits = session.identifier + session.token;
        seen.resize(digits.size());
        for (std::size_t place = 0; place < digits.size(); ++place) {
            seen[place].insert(digits[place]);
        }
    }
    for (std::size_t place = 0; place < seen.size(); ++place) {
        // It is practically impossible that 200 random digits have fewer than 8 of 16 values.
        EXPECT_GE(seen[place].size(), 8u) << place;
    }
}

TEST_F(SessionTest, storesFileForOwnerOnly) {
    const Session session = start();
    struct stat status = {};
    ASSERT_EQ(::stat(sessionFile(session.identifier).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600u);
    EXPECT_THAT(namesIn(boardFile("/var/lib/session")), testing::ElementsAre(session.identifier));
}

TEST_F(SessionTest, checksEveryDigitOfToken) {
    const std::string cookie = start().cookieValue();
    for (std::size_t place = 17; place < cookie.size(); ++place) {
        std::string forged = cookie;
        forged[place] = forged[place] == '0' ? '1' : '0';
        EXPECT_FALSE(isLetIn(forged)) << place;
    }
    EXPECT_TRUE(isLetIn(cookie));
}

TEST_F(SessionTest, rejectsTokenOfOtherSession) {
    const Session one = start();
    const Session other = start();
    EXPECT_FALSE(isLetIn(one.identifier + "-" + other.token));
    EXPECT_FALSE(isLetIn(other.identifier + "-" + one.token));
}

TEST_F(SessionTest, keepsSessionDespiteForgedCookie) {
    const Session session = start();
    writeText(backupFile(session.identifier), "backup");
    EXPECT_FALSE(isLetIn(session.identifier + "-" + std::string(32, '0')));
    EXPECT_TRUE(exists(backupFile(session.identifier)));
    EXPECT_TRUE(isLetIn(session.cookieValue()));
}

TEST_F(SessionTest, rejectsMalformedCookies) {
    const Session session = start();
    for (const std::string& cookie :
         {std::string(), session.identifier, session.token, session.identifier + session.token,
          session.cookieValue() + " ", " " + session.cookieValue(), session.cookieValue().substr(1),
          "../session/" + session.cookieValue(), std::string(100000, 'a'),
          session.identifier + "-"}) {
        EXPECT_FALSE(isLetIn(cookie)) << cookie.substr(0, 100);
    }
}

TEST_F(SessionTest, leavesOutputUnchangedIfNotFound) {
    start();
    Session session;
    session.user = "unchanged";
    EXPECT_FALSE(Host::findSession("0000000000000000-" + std::string(32, '0'), session));
    EXPECT_FALSE(Host::findSession("", session));
    EXPECT_EQ(session.user, "unchanged");
    EXPECT_EQ(session.identifier, "");
}

TEST_F(SessionTest, keepsUserNameVerbatim) {
    for (const char* user : {"", "a=b", "token=0", "caf\xC3\xA9 <script>", "x\r", " spaces "}) {
        EXPECT_EQ(find(Host::startSession(user).cookieValue()).user, user);
    }
}

TEST_F(SessionTest, rejectsLineBreakInName) {
    EXPECT_THROW(Host::startSession("user\ntoken_sha256=1"), PException);
    EXPECT_THAT(namesIn(boardFile("/var/lib/session")), IsEmpty());
}

TEST_F(SessionTest, failsIfSessionCannotBeStored) {
    std::filesystem::remove_all(boardFile("/var/lib/session"));
    try {
        start();
        ADD_FAILURE() << "started";
    } catch (const PException& exception) {
        EXPECT_EQ(exception.getExceptionDetail(), Host::SESSION_NOT_STORED);
    }
}

TEST_F(SessionTest, rejectsHostileFiles) {
    const Session session = start();
    const std::string path = sessionFile(session.identifier);
    const std::string sound = readText(path);
    const std::string sum = Host::sha256Hex(session.token);
    const std::string noToken = sound.substr(sound.find('\n') + 1);
    for (const std::string& content :
         {std::string(), std::string("\n\n\n"), std::string("token_sha256"), std::string("="),
          std::string("token_sha256=") + sum, noToken, "token_sha256=\n" + noToken,
          "token_sha256=" + sum.substr(1) + "\n" + noToken, "token_sha256=" + sum + "0\n" + noToken,
          "token_sha256= " + sum + "\n" + noToken, "TOKEN_SHA256=" + sum + "\n" + noToken,
          "token=" + session.token + "\n" + noToken,
          "token_sha256=" + session.token + "\n" + noToken, "token_sha256=x\n" + sound,
          std::string(5000, '\0'), std::string(5000, '\xFF'),
          sound + std::string(16 * 1024, '\n')}) {
        writePrivateText(path, content);
        EXPECT_FALSE(isLetIn(session.cookieValue())) << content.substr(0, 200);
    }
    writePrivateText(path, sound);
    EXPECT_TRUE(isLetIn(session.cookieValue()));
}

TEST_F(SessionTest, skipsUnknownLines) {
    const Session session = start();
    const std::string path = sessionFile(session.identifier);
    writeText(path, readText(path) + "color=blue\nnot a line\ntoken_sha256=second\n");
    EXPECT_TRUE(isLetIn(session.cookieValue()));
}

TEST_F(SessionTest, rejectsFileThatOthersMayReadOrOwn) {
    const Session session = start();
    const std::string path = sessionFile(session.identifier);
    for (const mode_t mode : {0644U, 0640U, 0601U, 0700U, 0400U, 04600U}) {
        const Session other = start();
        ASSERT_EQ(::chmod(sessionFile(other.identifier).c_str(), mode), 0);
        EXPECT_FALSE(isLetIn(other.cookieValue())) << mode;
    }
    EXPECT_TRUE(isLetIn(session.cookieValue()));
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file to another user";
    }
    ASSERT_EQ(::chown(path.c_str(), 12345, 12345), 0);
    EXPECT_FALSE(isLetIn(session.cookieValue()));
}

TEST_F(SessionTest, rejectsFileFromFuture) {
    const Session used = start();
    setAge(sessionFile(used.identifier), -3600);
    EXPECT_FALSE(isLetIn(used.cookieValue()));
    const Session made = start();
    setField(made, "created", std::to_string(std::time(nullptr) + 3600));
    EXPECT_FALSE(isLetIn(made.cookieValue()));
    const Session slightly = start();
    setAge(sessionFile(slightly.identifier), -30);
    EXPECT_TRUE(isLetIn(slightly.cookieValue()));
}

TEST_F(SessionTest, doesNotStoreToken) {
    const Session session = start();
    const std::string content = readText(sessionFile(session.identifier));
    EXPECT_EQ(content.find(session.token), std::string::npos);
    const std::string sum = Host::sha256Hex(session.token);
    EXPECT_NE(content.find(sum), std::string::npos);
    EXPECT_FALSE(isLetIn(session.identifier + "-" + sum.substr(0, session.token.size())));
}

TEST_F(SessionTest, endsOldestSessionOverLimit) {
    const Session other = Host::startSession("viewer");
    std::vector<Session> sessions;
    for (std::size_t i = 0; i < Host::SESSIONS_OF_A_USER + 2; ++i) {
        sessions.push_back(start());
        // Sets distinct times, because the sessions may start within the same second.
        setField(sessions.back(), "created",
                 std::to_string(std::time(nullptr) - 100 + static_cast<std::time_t>(i)));
    }
    writeText(backupFile(sessions[0].identifier), "backup");
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        EXPECT_EQ(isLetIn(sessions[i].cookieValue()), i >= 2) << i;
    }
    EXPECT_FALSE(exists(backupFile(sessions[0].identifier)));
    EXPECT_TRUE(isLetIn(other.cookieValue()));
    EXPECT_EQ(namesIn(boardFile("/var/lib/session")).size(), Host::SESSIONS_OF_A_USER + 1);
}

TEST_F(SessionTest, endsOldestSessionOfSameSecond) {
    std::map<std::string, Session> sessions;  // by identifier
    while (sessions.size() < Host::SESSIONS_OF_A_USER) {
        const Session session = start();
        sessions[session.identifier] = session;
    }
    const std::time_t second = std::time(nullptr);
    long nanoseconds = 999;  // the session with the first identifier is the newest
    for (const auto& [identifier, session] : sessions) {
        setField(session, "created", std::to_string(second));
        const timespec moment = {.tv_sec = second, .tv_nsec = nanoseconds--};
        const timespec times[] = {moment, moment};
        ASSERT_EQ(::utimensat(AT_FDCWD, sessionFile(identifier).c_str(), times, 0), 0);
    }
    start();
    for (const auto& [identifier, session] : sessions) {
        const bool oldest = identifier == sessions.rbegin()->first;
        EXPECT_EQ(isLetIn(session.cookieValue()), !oldest) << identifier;
    }
}

TEST_F(SessionTest, keepsSessionIfStatusIsDenied) {
    const Session session = start();
    const ChildResult child = runInChild([&session] {
        denyStatus();
        try {
            Session found;
            return Host::findSession(session.cookieValue(), found) ? 1 : 2;
        } catch (const PException&) {
            return 0;
        }
    });
    EXPECT_EQ(child.exitStatus, 0) << child.errors;
    EXPECT_TRUE(isLetIn(session.cookieValue()));
}

TEST_F(SessionTest, findsByIdentifierWithoutEndingSessions) {
    const Session session = start();
    Session found;
    EXPECT_TRUE(Host::findSessionByIdentifier(session.identifier, found));
    EXPECT_EQ(found.user, "operator");
    EXPECT_EQ(found.token, "");
    setAge(sessionFile(session.identifier), Host::SESSION_IDLE_SECONDS + 1);
    Session unchanged;
    EXPECT_FALSE(Host::findSessionByIdentifier(session.identifier, unchanged));
    EXPECT_FALSE(Host::findSessionByIdentifier("0123456789abcdef", unchanged));
    EXPECT_FALSE(Host::findSessionByIdentifier("../../etc/passwd", unchanged));
    EXPECT_EQ(unchanged.user, "");
    EXPECT_TRUE(exists(sessionFile(session.identifier)));
}

TEST_F(SessionTest, doesNotFollowLink) {
    const Session session = start();
    const std::string path = sessionFile(session.identifier);
    const std::string elsewhere = boardFile("/var/tmp/elsewhere");
    std::filesystem::rename(path, elsewhere);
    ASSERT_EQ(::symlink(elsewhere.c_str(), path.c_str()), 0);
    EXPECT_FALSE(isLetIn(session.cookieValue()));
    EXPECT_TRUE(exists(elsewhere));
}

TEST_F(SessionTest, rejectsFolderOrPipe) {
    const std::string cookie = "0123456789abcdef-" + std::string(32, '0');
    std::filesystem::create_directory(sessionFile("0123456789abcdef"));
    EXPECT_FALSE(isLetIn(cookie));
    std::filesystem::remove_all(sessionFile("0123456789abcdef"));
    ASSERT_EQ(::mkfifo(sessionFile("0123456789abcdef").c_str(), 0600), 0);
    EXPECT_FALSE(isLetIn(cookie));
}

}  // namespace VeskLib::Test
