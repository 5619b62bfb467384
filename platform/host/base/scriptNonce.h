#pragma once

#include <string>

namespace VeskLib::Host {

// Returns the nonce of the scripts in this process's page. The page's Content-Security-Policy
// contains it, so that a browser runs these inline scripts and no others. Random, created on the
// first call. Throws PException (NO_RANDOM_NUMBERS) if the kernel supplies no random bytes.
const std::string& scriptNonce();

// Returns true if scriptNonce() was called. Otherwise the page has no inline scripts, and its
// policy needs no nonce.
bool hasScriptNonce();

}  // namespace VeskLib::Host
