#pragma once

#include "client/http/Transport.h"

#include <curl/curl.h>

#include <string>

namespace Efictl {

// A request without a usable response.
struct LostRequest {
    CURLcode error = CURLE_OK;
    std::string reason;         // libcurl's description; may be empty
    long certificateError = 0;  // OpenSSL's number; 0 for none
    Effect effect = Effect::NONE;
    bool tooLarge = false;  // the response exceeded its limit
    bool hurried = false;   // the time limit of the whole command was reached
};

// Throws the Failure for a request to the board at the address `board`.
[[noreturn]] void throwLostRequest(const LostRequest& request, const std::string& board);

}  // namespace Efictl
