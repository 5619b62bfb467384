#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace VeskLib::Host {

// The partitions because of which a change was refused.
struct RefusalDetails {
    struct Partition {
        std::uint32_t number = 0;
        std::string version;  // of its BIOS, where the code is about versions; else empty
    };

    std::string fileVersion;  // that the staged file holds, where the code is about versions
    std::vector<Partition> partitions;  // by number
};

// Notes what the back-end said beside the code of this process's last request; 0 for none.
void noteRefusal(int code, const RefusalDetails& details);

// Returns the details of the last request if it was refused with `code`; none otherwise.
const RefusalDetails& refusalDetails(int code);

}  // namespace VeskLib::Host
