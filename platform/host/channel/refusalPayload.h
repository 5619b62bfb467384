#pragma once

#include "platform/host/base/RefusalDetails.h"

#include <vector>

namespace VeskLib::Host {

// The payload of a reply that refuses a request. docs/wire-formats.md gives the layout by bytes.

// No bytes without partitions.
std::vector<unsigned char> encode(const RefusalDetails& details);

// Returns false, with `details` unchanged, when the bytes are not exactly one such object.
bool decode(const std::vector<unsigned char>& bytes, RefusalDetails& details);

}  // namespace VeskLib::Host
