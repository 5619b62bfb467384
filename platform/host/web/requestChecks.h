#pragma once

namespace VeskLib::Host {

enum class RequestVerdict {
    ACCEPTED,
    METHOD_NOT_ALLOWED,  // neither GET, HEAD nor POST: 405
    MISDIRECTED,         // sent to a name that the board does not have: 421
    CROSS_SITE,          // another site's page sent it, and it is more than a plain link: 403
};

// What every program of the board checks before it looks at a request: the method; that Host is a
// name of the board; and that the request comes from this site (Sec-Fetch-Site, and for a POST
// Origin against scheme and Host). Another site's link may name a function and nothing else.
// Throws PException when the names of the board cannot be read.
RequestVerdict checkRequest();

bool isPost();
bool isHead();

}  // namespace VeskLib::Host
