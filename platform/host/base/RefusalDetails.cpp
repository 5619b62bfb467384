#include "platform/host/base/RefusalDetails.h"

namespace VeskLib::Host {

namespace {

struct LastRefusal {
    int code = 0;
    RefusalDetails details;
};

LastRefusal& lastRefusal() {
    static LastRefusal last;
    return last;
}

}  // namespace

void noteRefusal(int code, const RefusalDetails& details) {
    lastRefusal() = {.code = code, .details = details};
}

const RefusalDetails& refusalDetails(int code) {
    static const RefusalDetails NONE;
    return lastRefusal().code == code ? lastRefusal().details : NONE;
}

}  // namespace VeskLib::Host
