#pragma once

#include <string>

namespace Efictl {

struct Credentials {
    std::string user;
    std::string password;
};

// Where a command says that they are.
struct CredentialOptions {
    std::string host;          // of the board, as netrc names it
    std::string user;          // empty if not given
    std::string passwordFile;  // empty if not given
};

// Finds user and password: the password in the file, in EFICTL_PASSWORD, in netrc, or by asking on
// the terminal, whatever comes first. Throws Failure: USAGE if there is none, FAILED if a file
// cannot be read or may be read by every user.
Credentials findCredentials(const CredentialOptions& options);

}  // namespace Efictl
