#pragma once

namespace VeskLib::Host {

// Called if the user has no authority for the request's function. From then on this process, which
// serves only this request, sends no changes to the back-end, whatever was posted.
void forbidChanges();

bool areChangesForbidden();

}  // namespace VeskLib::Host
