#pragma once

#include "client/http/Transport.h"

#include <curl/curl.h>

#include <string>

namespace Efictl {

// What is known of a request that has no answer.
struct LostRequest {
    CURLcode error = CURLE_OK;
    std::string reason;         // what libcurl says about it; may be empty
    long certificateError = 0;  // of OpenSSL's verification; 0 for none
    Effect effect = Effect::NONE;
    bool tooLarge = false;  // the answer was
    bool hurried = false;   // there was no time left for it
};

// Throws the Failure that `request` is to the board at the address `board`.
[[noreturn]] void throwLostRequest(const LostRequest& request, const std::string& board);

}  // namespace Efictl
