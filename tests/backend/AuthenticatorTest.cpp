#include "board/backend/Authenticator.h"

#include <crypt.h>
#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Board;

namespace {

// A hash that takes next to no time, which is all that a test wants of it.
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

    // The user that is let in; "nobody" when none is.
    std::string whoIs(const std::string& name, const std::string& password) {
        Authenticator authenticator(board);
        const User* user = authenticator.authenticate(name, password);
        return user == nullptr ? "nobody" : user->name;
    }

    BoardDescription board;
};

}  // namespace

TEST_F(AuthenticatorTest, rightPasswordLetsIn) {
    EXPECT_EQ(whoIs("admin", "secret"), "admin");
    EXPECT_EQ(whoIs("viewer", "päss"), "viewer");
    EXPECT_EQ(whoIs("empty", ""), "empty");
}

TEST_F(AuthenticatorTest, wrongPasswordDoesNot) {
    for (const char* password : {"", "Secret", "secret ", "secre", "secrets", "päss"}) {
        EXPECT_EQ(whoIs("admin", password), "nobody") << password;
    }
}

TEST_F(AuthenticatorTest, wrongNameDoesNot) {
    for (const char* name : {"", "Admin", "admin ", "admi", "nobody"}) {
        EXPECT_EQ(whoIs(name, "secret"), "nobody") << name;
    }
}

// The first user's hash is what an unknown name is checked against.
TEST_F(AuthenticatorTest, passwordOfTheFirstUserDoesNotLetInAnUnknownName) {
    EXPECT_EQ(whoIs("nobody", "secret"), "nobody");
    EXPECT_EQ(whoIs(std::string("admin\0", 6), "secret"), "nobody");
}

TEST_F(AuthenticatorTest, passwordIsNotCutAtANulCharacter) {
    EXPECT_EQ(whoIs("admin", std::string("secret\0x", 8)), "nobody");
    EXPECT_EQ(whoIs("empty", std::string("\0", 1)), "nobody");
}

TEST_F(AuthenticatorTest, passwordThatIsTooLongIsRefused) {
    EXPECT_EQ(whoIs("admin", std::string(CRYPT_MAX_PASSPHRASE_SIZE, 's')), "nobody");
    EXPECT_EQ(whoIs("admin", std::string(65535, 's')), "nobody");
}

// crypt(3) reports a failure as a text; a hash of the same text must not match it.
TEST_F(AuthenticatorTest, hashThatIsNoneLetsNobodyIn) {
    for (const char* hash : {"*0", "*1", "*", "", "x"}) {
        board.users.front().passwordHash = hash;
        EXPECT_EQ(whoIs("admin", "secret"), "nobody") << hash;
        EXPECT_EQ(whoIs("admin", ""), "nobody") << hash;
    }
}

TEST_F(AuthenticatorTest, boardWithoutUsersLetsNobodyIn) {
    board.users.clear();
    EXPECT_EQ(whoIs("admin", "secret"), "nobody");
}

}  // namespace VeskLib::Test
