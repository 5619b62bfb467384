#include "platform/host/channel/changes.h"

namespace VeskLib::Host {

namespace {

bool forbidden = false;

}  // namespace

void forbidChanges() {
    forbidden = true;
}

bool areChangesForbidden() {
    return forbidden;
}

}  // namespace VeskLib::Host
