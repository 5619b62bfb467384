#pragma once

namespace VeskLib::Host {

// Removes every upload under /var/tmp whose process died between giving it its name and moving it:
// those that nobody holds locked. A folder of such a name stays.
void removeAbandonedUploads();

}  // namespace VeskLib::Host
