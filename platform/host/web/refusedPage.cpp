#include "platform/host/web/refusedPage.h"

namespace VeskLib::Host {

namespace {

bool refused = false;

}  // namespace

void noteRefusedPage() {
    refused = true;
}

bool wasPageRefused() {
    return refused;
}

}  // namespace VeskLib::Host
