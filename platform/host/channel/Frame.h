#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace VeskLib::Host {

// The frames of the back-end channel: a 4-byte big-endian length, then that many bytes.
// docs/wire-formats.md describes the layout byte by byte.

inline constexpr std::uint32_t LARGEST_FRAME = 1024 * 1024;

enum class RequestKind : std::uint8_t {
    GET = 1,      // requests an object
    SET = 2,      // sends an object
    LOGIN = 3,    // checks a user name and a password
    CONTROL = 4,  // sends a command of boardctl
};

struct RequestFrame {
    RequestKind kind = RequestKind::GET;
    std::uint32_t number = 0;
    std::string sessionIdentifier;  // empty for LOGIN and CONTROL
    std::vector<unsigned char> payload;
    // Empty for GET, LOGIN and CONTROL. The first two are for the audit log.
    std::string address = {};            // of the client
    std::string requestIdentifier = {};  // of the CGI request
    std::string stagedFile = {};         // name of the file that the page showed; may be empty
};

struct ReplyFrame {
    std::uint32_t errorCode = 0;  // 0: the request was carried out
    std::vector<unsigned char> payload;
};

// Return the bytes of a frame without the preceding length.
std::vector<unsigned char> encode(const RequestFrame& frame);
std::vector<unsigned char> encode(const ReplyFrame& frame);

// Return false and leave `frame` unchanged if the bytes are not a valid frame of this kind.
bool decode(const std::vector<unsigned char>& bytes, RequestFrame& frame);
bool decode(const std::vector<unsigned char>& bytes, ReplyFrame& frame);

}  // namespace VeskLib::Host
