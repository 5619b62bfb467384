#pragma once

#include "client/http/Transport.h"

#include <curl/curl.h>

#include <string>

namespace Efictl {

// A request that was not answered.
struct LostRequest {
    CURLcode error = CURLE_OK;
    std::string reason;         // libcurl's description; may be empty
    long certificateError = 0;  // OpenSSL's number; 0 for none
    Effect effect = Effect::NONE;
    bool tooLarge = false;  // the answer exceeded its limit
    bool hurried = false;   // the time of the whole command was over
};

// Throws the Failure for a request to the board at the address `board`.
[[noreturn]] void throwLostRequest(const LostRequest& request, const std::string& board);

}  // namespace Efictl
