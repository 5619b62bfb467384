#pragma once

namespace VeskLib::Fuzz {

// Checks a property that must hold for every input. If `holds` is false, prints `property` and
// aborts the process, which a fuzzer reports as a finding.
void require(bool holds, const char* property);

}  // namespace VeskLib::Fuzz
