#include "board/backend/Authenticator.h"

#include "platform/host/base/equalSteadily.h"

#include <crypt.h>
#include <strings.h>

#include <cstring>
#include <memory>

namespace VeskLib::Board {

namespace {

// A hash of no password that anybody knows, for a board without users.
const char* const LONELY_DECOY =
    "$y$j9T$0ioYzHf7otzQk9driQNom/$WVwxnwygYKY7W2mHieIY5/5GqdL4TRifUnXe/jwkbV0";

// The hash of `password` made as `hash` was made; empty when that is not possible.
std::string hashLike(const std::string& hash, const std::string& password) {
    const auto work = std::make_unique<crypt_data>();
    const char* made = ::crypt_r(password.c_str(), hash.c_str(), work.get());
    // A failure is a text that begins with "*", which is no hash.
    std::string result = made == nullptr || made[0] == '*' ? "" : made;
    ::explicit_bzero(work.get(), sizeof *work);
    return result;
}

}  // namespace

Authenticator::Authenticator(const BoardDescription& board)
    // As costly as the real ones: the first user's own, since whatever matches it is thrown away.
    : board(board),
      decoyHash(board.users.empty() ? LONELY_DECOY : board.users.front().passwordHash) {
}

const User* Authenticator::authenticate(const std::string& name, const std::string& password) {
    const User* const user = board.findUser(name);
    const std::string& expected = user != nullptr ? user->passwordHash : decoyHash;
    const std::scoped_lock lock(computing);
    const std::string made = hashLike(expected, password);
    const bool matches = !made.empty() && Host::equalSteadily(made, expected);
    // crypt(3) ends at a NUL, so that "secret" and "secret\0anything" would be one password.
    const bool cut = password.find('\0') != std::string::npos;
    return matches && !cut ? user : nullptr;
}

}  // namespace VeskLib::Board
