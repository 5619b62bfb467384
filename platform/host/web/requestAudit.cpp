#include "platform/host/web/requestAudit.h"

#include "platform/host/audit/AuditLog.h"
#include "platform/host/web/refusedPage.h"
#include "platform/host/web/requestSession.h"
#include "platform/host/web/sessionFiles.h"

namespace VeskLib::Host {

namespace {

void recordRefusalOf(const char* reason) {
    AuditEvent event = makeAuditEvent("refusal");
    event.reason = reason;
    recordRefusal(event);
}

}  // namespace

void recordVerdict(RequestVerdict verdict) {
    switch (verdict) {
        case RequestVerdict::ACCEPTED:
            break;
        case RequestVerdict::METHOD_NOT_ALLOWED:
            recordRefusalOf("method");
            break;
        case RequestVerdict::MISDIRECTED:
            recordRefusalOf("host");
            break;
        case RequestVerdict::CROSS_SITE:
            recordRefusalOf("cross_site");
            break;
    }
}

void recordRefusedRight() {
    recordRefusalOf("rights");
}

void settleRequest() {
    if (requestSession() == nullptr) {
        return;
    }
    if (wasPageRefused()) {
        recordRefusedRight();
    }
    if (isPost()) {
        settleSessionFiles();
    }
}

}  // namespace VeskLib::Host
