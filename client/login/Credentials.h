#pragma once

#include <string>

namespace Efictl {

struct Credentials {
    std::string user;
    std::string password;
};

// The options for finding them.
struct CredentialOptions {
    std::string host;          // of the board, in the form that netrc uses
    std::string user;          // empty if not given
    std::string passwordFile;  // empty if not given
};

// Returns user and password. Looks for the password in the file, in EFICTL_PASSWORD and in netrc,
// then asks on the terminal. Throws Failure: USAGE if there is none, FAILED if a file cannot be
// read or is accessible to every user.
Credentials findCredentials(const CredentialOptions& options);

}  // namespace Efictl
