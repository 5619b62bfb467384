#include <VeskLib/Gui/CommonDefaultPage.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

void CommonDefaultPage::makePage() {
    record("makePage");
    if (script().posted) {
        makeConfigPage();
    } else {
        makeDispPage();
    }
}

}  // namespace VeskLib::Gui
