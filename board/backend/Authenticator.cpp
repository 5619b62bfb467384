#include "board/backend/Authenticator.h"

#include "platform/host/base/equalSteadily.h"

#include <crypt.h>
#include <strings.h>

#include <cstring>
#include <memory>

namespace VeskLib::Board {

namespace {

// The hash of an unknown password, for a board without users.
const char* const LONELY_DECOY =
    "$y$j9T$0ioYzHf7otzQk9driQNom/$WVwxnwygYKY7W2mHieIY5/5GqdL4TRifUnXe/jwkbV0";

// Hashes `password` with the method and salt of `hash`. Returns "" on failure.
std::string hashLike(const std::string& hash, const std::string& password) {
    const auto work = std::make_unique<crypt_data>();
    const char* made = ::crypt_r(password.c_str(), hash.c_str(), work.get());
    // On failure, crypt_r() returns null or a text that begins with "*".
    std::string result = made == nullptr || made[0] == '*' ? "" : made;
    ::explicit_bzero(work.get(), sizeof *work);
    return result;
}

}  // namespace

Authenticator::Authenticator(const BoardDescription& board)
    // The decoy is the first user's hash, so that checking it costs as much as checking a real one.
    // A match is ignored.
    : board(board),
      decoyHash(board.users.empty() ? LONELY_DECOY : board.users.front().passwordHash) {
}

const User* Authenticator::authenticate(const std::string& name, const std::string& password) {
    const User* const user = board.findUser(name);
    const std::string& expected = user != nullptr ? user->passwordHash : decoyHash;
    const std::scoped_lock lock(computing);
    const std::string made = hashLike(expected, password);
    const bool matches = !made.empty() && Host::equalSteadily(made, expected);
    // crypt(3) stops at a NUL, so that "secret" and "secret\0anything" would be the same password.
    const bool cut = password.find('\0') != std::string::npos;
    return matches && !cut ? user : nullptr;
}

}  // namespace VeskLib::Board
