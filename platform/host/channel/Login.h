#pragma once

#include <string>
#include <vector>

namespace VeskLib::Host {

// The payloads of a LOGIN request and of its reply; docs/wire-formats.md gives them by bytes.

struct LoginRequest {
    std::string user;
    std::string password;
    std::string origin;       // the address that asks, for slowing down who guesses; may be empty
    std::string device = {};  // what an earlier LoginAnswer has given this browser; may be empty
};

struct LoginAnswer {
    // Names the browser from now on; empty when it has a name for this user already.
    std::string device = {};
};

std::vector<unsigned char> encode(const LoginRequest& login);
std::vector<unsigned char> encode(const LoginAnswer& answer);

// False, with the object unchanged, when the bytes are not exactly such a payload.
bool decode(const std::vector<unsigned char>& bytes, LoginRequest& login);
bool decode(const std::vector<unsigned char>& bytes, LoginAnswer& answer);

}  // namespace VeskLib::Host
