#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace VeskLib::Host {

// The partitions that caused the refusal of a change.
struct RefusalDetails {
    struct Partition {
        std::uint32_t number = 0;
        std::string version;  // of its BIOS if the code is about versions; otherwise empty
    };

    std::string fileVersion;  // of the staged file if the code is about versions; otherwise empty
    std::vector<Partition> partitions;  // sorted by number
};

// Stores the details that came with the error code of this process's last request. `code` is 0 if
// the request succeeded.
void noteRefusal(int code, const RefusalDetails& details);

// Returns the details of the last request if its error code was `code`; otherwise empty details.
const RefusalDetails& refusalDetails(int code);

}  // namespace VeskLib::Host
