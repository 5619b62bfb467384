#pragma once

#include <cstdint>

namespace VeskLib::Test {

// The session that tests ask in, and the value of its cookie.
inline const char* const SESSION = "0123456789abcdef";
inline const char* const COOKIE = "0123456789abcdef-00112233445566778899aabbccddeeff";

// Milliseconds for what must not time out, however slow the machine.
inline const int LONG = 60000;

// The servers of tests answer a request with this number only when the test lets them.
inline const std::uint32_t HELD_REQUEST = 1;

}  // namespace VeskLib::Test
