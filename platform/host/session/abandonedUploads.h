#pragma once

namespace VeskLib::Host {

// Removes uploads under /var/tmp that were named but not moved because their process died: those
// that are not locked. A folder with such a name stays.
void removeAbandonedUploads();

}  // namespace VeskLib::Host
