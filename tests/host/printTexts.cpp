// Prints one text of each kind. A process opens the catalogues once, so a test that needs them in
// another place starts this program.

#include "platform/host/text/Catalogue.h"

#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/lmsg_getmsg.h>

#include <iostream>

int main() {
    const int JAPANESE = 1;
    using namespace VeskLib;
    char text[256];
    std::cout << Gui::MessageMgr(JAPANESE).getMessage(72, 5) << '\n'
              << Gui::MessageMgr(Host::ENGLISH).getString(1006) << '\n'
              << lmsg_getmsg(20011, text, "remove", 13) << '\n';
    const char* found = Host::findText(Host::ENGLISH, Host::TextSet::TRACE, 107);
    std::cout << (found == nullptr ? "none" : found) << '\n';
    return 0;
}
