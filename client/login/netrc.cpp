#include "client/login/netrc.h"

#include <algorithm>

namespace Efictl {

namespace {

const std::string_view SPACE = " \t\r\n";

// Removes the next word from `rest` and returns it; empty at the end. Skips comments, which extend
// to the end of the line. A quoted word may contain spaces, and a backslash in it escapes the next
// character.
std::string takeWord(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(SPACE), rest.size()));
    while (!rest.empty() && rest.front() == '#') {
        rest.remove_prefix(std::min(rest.find('\n'), rest.size()));
        rest.remove_prefix(std::min(rest.find_first_not_of(SPACE), rest.size()));
    }
    if (rest.empty() || rest.front() != '"') {
        const std::size_t end = std::min(rest.find_first_of(SPACE), rest.size());
        std::string word(rest.substr(0, end));
        rest.remove_prefix(end);
        return word;
    }
    std::string word;
    std::size_t i = 1;
    for (; i < rest.size() && rest[i] != '"'; ++i) {
        if (rest[i] == '\\' && i + 1 < rest.size()) {
            ++i;
        }
        word += rest[i];
    }
    rest.remove_prefix(std::min(i + 1, rest.size()));
    return word;
}

// Skips a macro, which extends to the next empty line.
void skipMacro(std::string_view& rest) {
    const std::size_t end = rest.find("\n\n");
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end);
}

}  // namespace

std::optional<Credentials> findInNetrc(std::string_view rest, const std::string& host,
                                       const std::string& user) {
    Credentials entry;
    bool isWanted = false;
    const auto fits = [&] {
        return isWanted && !entry.password.empty() && (user.empty() || entry.user == user);
    };
    while (true) {
        const std::string word = takeWord(rest);
        const bool ends = word.empty() && rest.empty();
        if (ends || word == "machine" || word == "default") {
            if (fits()) {
                return entry;
            }
            if (ends) {
                return std::nullopt;
            }
            entry = {};
            isWanted = word == "default" || takeWord(rest) == host;
        } else if (word == "login") {
            entry.user = takeWord(rest);
        } else if (word == "password") {
            entry.password = takeWord(rest);
        } else if (word == "account") {
            takeWord(rest);
        } else if (word == "macdef") {
            skipMacro(rest);
        }
    }
}

}  // namespace Efictl
