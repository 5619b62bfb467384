#pragma once

namespace VeskLib::Host {

// Pages act before they check their user's authority; some requests make them fail before that
// check, or skip it. Therefore the status is 403 whenever the process has begun a page for a user
// without authority, whatever the page prints. A function without a page does not count.
void noteRefusedPage();

bool wasPageRefused();

}  // namespace VeskLib::Host
