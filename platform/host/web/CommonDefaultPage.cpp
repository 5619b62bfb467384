#include <VeskLib/Gui/CommonDefaultPage.h>

#include "platform/host/web/requestChecks.h"

namespace VeskLib::Gui {

void CommonDefaultPage::makePage() {
    if (Host::isPost()) {
        makeConfigPage();
    } else {
        makeDispPage();
    }
}

}  // namespace VeskLib::Gui
