#pragma once

#include <string>

namespace VeskLib::Host {

// The address of the request's client, as the web server gives it; may be empty.
std::string clientAddress();

// What names this request in the audit log, the same for the whole process and another for every
// request of the board: the time of the first call and the process number. No secret.
const std::string& requestIdentifier();

}  // namespace VeskLib::Host
