#pragma once

namespace VeskLib::Test {

// Whether the sanitizers watch this build. Their check of an object's type opens a pipe, so that it
// takes every object for none while there are no descriptors.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool SANITIZED = true;
#elif defined(__has_feature)
inline constexpr bool SANITIZED = __has_feature(address_sanitizer);
#else
inline constexpr bool SANITIZED = false;
#endif

}  // namespace VeskLib::Test
