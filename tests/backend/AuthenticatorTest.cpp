#include "board/backend/Authenticator.h"

#include <crypt.h>
#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Board;

namespace {

// Returns a hash that is cheap to compute, so that the tests run fast.
std::string quickHash(const std::string& password) {
    crypt_data work = {};
    return ::crypt_r(password.c_str(), "$1$saltsalt$", &work);
}

class AuthenticatorTest : public testing::Test {
protected:
    AuthenticatorTest() {
        board.users.push_back({"admin", quickHash("secret"), {false, ",105,106,"}});
        board.users.push_back({"viewer", quickHash("päss"), {false, ""}});
        board.users.push_back({"empty", quickHash(""), {false, ""}});
    }

    // Returns the name of the authenticated user, or "nobody".
    std::string whoIs(const std::string& name, const std::string& password) {
        Authenticator authenticator(board);
        const User* user = authenticator.authenticate(name, password);
        return user == nullptr ? "nobody" : user->name;
    }

    BoardDescription board;
};

}  // namespace

TEST_F(AuthenticatorTest, acceptsRightPassword) {
    EXPECT_EQ(whoIs("admin", "secret"), "admin");
    EXPECT_EQ(whoIs("viewer", "päss"), "viewer");
    EXPECT_EQ(whoIs("empty", ""), "empty");
}

TEST_F(AuthenticatorTest, rejectsWrongPassword) {
    for (const char* password : {"", "Secret", "secret ", "secre", "secrets", "päss"}) {
        EXPECT_EQ(whoIs("admin", password), "nobody") << password;
    }
}

TEST_F(AuthenticatorTest, rejectsWrongName) {
    for (const char* name : {"", "Admin", "admin ", "admi", "nobody"}) {
        EXPECT_EQ(whoIs(name, "secret"), "nobody") << name;
    }
}

// The password of an unknown user is checked against the first user's hash.
TEST_F(AuthenticatorTest, rejectsUnknownNameWithPasswordOfFirstUser) {
    EXPECT_EQ(whoIs("nobody", "secret"), "nobody");
    EXPECT_EQ(whoIs(std::string("admin\0", 6), "secret"), "nobody");
}

TEST_F(AuthenticatorTest, doesNotCutPasswordAtNul) {
    EXPECT_EQ(whoIs("admin", std::string("secret\0x", 8)), "nobody");
    EXPECT_EQ(whoIs("empty", std::string("\0", 1)), "nobody");
}

TEST_F(AuthenticatorTest, rejectsTooLongPassword) {
    EXPECT_EQ(whoIs("admin", std::string(CRYPT_MAX_PASSPHRASE_SIZE, 's')), "nobody");
    EXPECT_EQ(whoIs("admin", std::string(65535, 's')), "nobody");
}

// crypt(3) reports a failure as a string, which must not match a stored hash of the same text.
TEST_F(AuthenticatorTest, rejectsEveryPasswordForInvalidHash) {
    for (const char* hash : {"*0", "*1", "*", "", "x"}) {
        board.users.front().passwordHash = hash;
        EXPECT_EQ(whoIs("admin", "secret"), "nobody") << hash;
        EXPECT_EQ(whoIs("admin", ""), "nobody") << hash;
    }
}

TEST_F(AuthenticatorTest, rejectsEveryoneOnBoardWithoutUsers) {
    board.users.clear();
    EXPECT_EQ(whoIs("admin", "secret"), "nobody");
}

}  // namespace VeskLib::Test
