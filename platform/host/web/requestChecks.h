#pragma once

namespace VeskLib::Host {

enum class RequestVerdict {
    ACCEPTED,
    METHOD_NOT_ALLOWED,  // neither GET, HEAD nor POST: 405
    CROSS_SITE,          // a POST that another site's page sent: 403
};

// What every program of the board checks before it looks at a request: the method, and for a POST
// that it comes from this site (Sec-Fetch-Site, and Origin against Host).
RequestVerdict checkRequest();

bool isPost();
bool isHead();

}  // namespace VeskLib::Host
