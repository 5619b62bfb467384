#include <VeskLib/Gui/HTMLPage.h>

#include "platform/host/html/skeletons.h"

namespace VeskLib::Gui {

// There is only one shell, whatever the number.
HTMLPage::HTMLPage(int /*shell*/)
    : generator(new HTMLCodeGenerator(Host::SHELL_SKELETON, &componentMap)) {
}

}  // namespace VeskLib::Gui
