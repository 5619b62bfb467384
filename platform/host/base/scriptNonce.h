#pragma once

#include <string>

namespace VeskLib::Host {

// The mark that the scripts within this process's page carry. The page's Content-Security-Policy
// names it, so that a browser runs these scripts and no other. Random, made at the first call.
// Throws PException (NO_RANDOM_NUMBERS) when the kernel gives none.
const std::string& scriptNonce();

// Whether scriptNonce() was called, so that a page without scripts names no mark.
bool hasScriptNonce();

}  // namespace VeskLib::Host
