#include <VeskLib/Gui/HTMLPage.h>

namespace VeskLib::Gui {

// There is one shell; every number stands for it.
HTMLPage::HTMLPage(int /*shell*/)
    : generator(new HTMLCodeGenerator("/usr/local/www/skel/skeleton_shell.txt", &componentMap)) {
}

}  // namespace VeskLib::Gui
