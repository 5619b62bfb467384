#pragma once

namespace VeskLib::Fuzz {

// A property that holds whatever the input is. Where it does not, `property` is printed and the
// process is aborted, which a fuzzer takes for a finding.
void require(bool holds, const char* property);

}  // namespace VeskLib::Fuzz
