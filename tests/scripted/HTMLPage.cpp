#include <VeskLib/Gui/HTMLPage.h>

#include "tests/scripted/Recorder.h"

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

// Not a counted object, because its destructor is the program's.
HTMLPage::HTMLPage(int shell)
    : generator(new HTMLCodeGenerator("shell " + std::to_string(shell), &componentMap)) {
    record("new " + describe("HTMLPage", shell));
}

}  // namespace VeskLib::Gui
