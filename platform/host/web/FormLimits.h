#pragma once

#include "data/uploadLimit.h"

#include <cstddef>

namespace VeskLib::Host {

// The limits of a request, in bytes unless noted. A request that exceeds one is refused as a whole.
// Only a file may be longer; it is then counted but not stored.
namespace FormLimits {

inline constexpr std::size_t QUERY_LENGTH = 8 * 1024;
inline constexpr std::size_t BODY_LENGTH = 64 * 1024;  // of form fields, the file not counted
inline constexpr std::size_t FIELDS = 600;             // number; one per partition, and spare
inline constexpr std::size_t NAME_LENGTH = 128;
inline constexpr std::size_t VALUE_LENGTH = 4 * 1024;
inline constexpr std::size_t FILE_NAME_LENGTH = 1024;
inline constexpr std::size_t FILE_LENGTH = VeskUi::LARGEST_UPLOAD;  // stored
inline constexpr std::size_t BOUNDARY_LENGTH = 70;                  // as RFC 2046 has it
inline constexpr std::size_t PART_HEADER_LENGTH = 4 * 1024;

}  // namespace FormLimits

}  // namespace VeskLib::Host
