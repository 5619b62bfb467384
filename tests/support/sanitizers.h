#pragma once

namespace VeskLib::Test {

// True in builds with sanitizers. Their check of an object's type opens a pipe, so it reports every
// object as invalid while no descriptor is available.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool SANITIZED = true;
#elif defined(__has_feature)
inline constexpr bool SANITIZED = __has_feature(address_sanitizer);
#else
inline constexpr bool SANITIZED = false;
#endif

}  // namespace VeskLib::Test
