#include <VeskLib/Gui/CommonDefaultPage.h>

#include "platform/host/channel/changes.h"
#include "platform/host/web/refusedPage.h"
#include "platform/host/web/requestChecks.h"

namespace VeskLib::Gui {

void CommonDefaultPage::makePage() {
    if (Host::areChangesForbidden()) {
        Host::noteRefusedPage();
    }
    if (Host::isPost()) {
        makeConfigPage();
    } else {
        makeDispPage();
    }
}

}  // namespace VeskLib::Gui
