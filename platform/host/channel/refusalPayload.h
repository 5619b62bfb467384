#pragma once

#include "platform/host/base/RefusalDetails.h"

#include <vector>

namespace VeskLib::Host {

// The payload of a reply that refuses a request; docs/wire-formats.md describes the layout byte by
// byte.

// Returns an empty vector if there are no partitions.
std::vector<unsigned char> encode(const RefusalDetails& details);

// Returns false and leaves `details` unchanged if the bytes are not exactly one such payload.
bool decode(const std::vector<unsigned char>& bytes, RefusalDetails& details);

}  // namespace VeskLib::Host
