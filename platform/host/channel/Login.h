#pragma once

#include <string>
#include <vector>

namespace VeskLib::Host {

// The payloads of a LOGIN request and of its reply; docs/wire-formats.md describes them byte by
// byte.

struct LoginRequest {
    std::string user;
    std::string password;
    std::string origin;       // client address, used to slow down guessing; may be empty
    std::string device = {};  // the browser's device from an earlier LoginAnswer; may be empty
};

struct LoginAnswer {
    // Identifies the browser in future logins. Empty if it already has a device for this user.
    std::string device = {};
};

std::vector<unsigned char> encode(const LoginRequest& login);
std::vector<unsigned char> encode(const LoginAnswer& answer);

// Return false and leave the object unchanged if the bytes are not exactly one such payload.
bool decode(const std::vector<unsigned char>& bytes, LoginRequest& login);
bool decode(const std::vector<unsigned char>& bytes, LoginAnswer& answer);

}  // namespace VeskLib::Host
