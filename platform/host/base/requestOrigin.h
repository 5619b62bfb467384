#pragma once

#include <string>

namespace VeskLib::Host {

// Returns the address of the request's client, as set by the web server; may be empty.
std::string clientAddress();

// Returns the identifier of this request in the audit log: the time of the first call and the
// process number. It is constant within the process and unique on the board. It is not secret.
const std::string& requestIdentifier();

}  // namespace VeskLib::Host
