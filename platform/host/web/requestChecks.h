#pragma once

namespace VeskLib::Host {

enum class RequestVerdict {
    ACCEPTED,
    METHOD_NOT_ALLOWED,  // neither GET, HEAD nor POST: 405
    MISDIRECTED,         // sent to a host name that is not the board's: 421
    CROSS_SITE,          // sent by another site's page, and not by a plain link: 403
};

// Makes the checks that every program of the board makes before it processes a request: that the
// method is allowed, that Host is a name of the board, and that the request comes from this site
// (Sec-Fetch-Site, and for a POST Origin, which must match scheme and Host). Another site may open
// a page with a link that gives a function number and nothing else; it may not load anything into
// its own pages. Throws PException if the board's names cannot be read.
RequestVerdict checkRequest();

bool isPost();
bool isHead();

}  // namespace VeskLib::Host
