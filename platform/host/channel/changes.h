#pragma once

namespace VeskLib::Host {

// A process serves one request. Once its user was found to have no authority for the request's
// function, it sends no change to the back-end any more, whatever the page's form asks for.
void forbidChanges();

bool areChangesForbidden();

}  // namespace VeskLib::Host
