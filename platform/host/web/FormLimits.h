#pragma once

#include <cstddef>

namespace VeskLib::Host {

// The limits of what a request may hold. A request beyond one of them is refused as a whole.
namespace FormLimits {

inline constexpr std::size_t QUERY_LENGTH = 8 * 1024;
inline constexpr std::size_t BODY_LENGTH = 64 * 1024;  // of form fields, upload not counted
inline constexpr std::size_t FIELDS = 600;             // one per partition, and room
inline constexpr std::size_t NAME_LENGTH = 128;
inline constexpr std::size_t VALUE_LENGTH = 4 * 1024;

}  // namespace FormLimits

}  // namespace VeskLib::Host
