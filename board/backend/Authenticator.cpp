#include "board/backend/Authenticator.h"

#include <crypt.h>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace VeskLib::Board {

namespace {

// A hash of no password that anybody knows, for a board without users.
const char* const LONELY_DECOY =
    "$y$j9T$0ioYzHf7otzQk9driQNom/$WVwxnwygYKY7W2mHieIY5/5GqdL4TRifUnXe/jwkbV0";

// Whether two texts are equal, in a time that does not tell where they differ.
bool equalSteadily(const std::string& one, const std::string& other) {
    unsigned int difference = one.size() == other.size() ? 0 : 1;
    const std::size_t common = std::min(one.size(), other.size());
    for (std::size_t i = 0; i < common; ++i) {
        difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
    }
    return difference == 0;
}

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

Authenticator::Authenticator(const std::vector<User>& users)
    // As costly as the real ones: the first user's own, since whatever matches it is thrown away.
    : users(users), decoyHash(users.empty() ? LONELY_DECOY : users.front().passwordHash) {
}

const User* Authenticator::authenticate(const std::string& name, const std::string& password) {
    const auto found = std::find_if(users.begin(), users.end(),
                                    [&name](const User& user) { return user.name == name; });
    const bool known = found != users.end();
    const std::string& expected = known ? found->passwordHash : decoyHash;
    const std::scoped_lock lock(computing);
    const std::string made = hashLike(expected, password);
    const bool matches = !made.empty() && equalSteadily(made, expected);
    // crypt(3) ends at a NUL, so that "secret" and "secret\0anything" would be one password.
    const bool cut = password.find('\0') != std::string::npos;
    return known && matches && !cut ? &*found : nullptr;
}

}  // namespace VeskLib::Board
