#pragma once

#include <cstdint>

namespace VeskLib::Test {

// The session of the tests' requests, and the value of its cookie.
inline const char* const SESSION = "0123456789abcdef";
inline const char* const COOKIE = "0123456789abcdef-00112233445566778899aabbccddeeff";

// Milliseconds: a timeout that must not expire even on a slow machine.
inline const int LONG = 60000;

// The number of a request that the tests' servers hold until the test releases it.
inline const std::uint32_t HELD_REQUEST = 1;

}  // namespace VeskLib::Test
