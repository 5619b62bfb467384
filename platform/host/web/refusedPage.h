#pragma once

namespace VeskLib::Host {

// The pages act before they look at their user's authority, and may meet errors of their own by
// then; some requests make them not look at all. Therefore the answer of a process that has begun a
// page for a user without authority is 403, whatever became of the page. A function that has no
// page is no matter of authority.
void noteRefusedPage();

bool wasPageRefused();

}  // namespace VeskLib::Host
