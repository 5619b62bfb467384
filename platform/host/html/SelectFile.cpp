#include <VeskLib/Gui/SelectFile.h>

#include "platform/host/html/attributes.h"
#include "platform/host/html/printText.h"

namespace VeskLib::Gui {

using Host::printAttribute;
using Host::printText;

SelectFile::SelectFile(const std::string& name, const std::string& accept, const std::string& form,
                       int width, int longestName)
    : name(name), accept(accept), form(form), width(width), longestName(longestName) {
}

SelectFile::~SelectFile() = default;

void SelectFile::printHTML() const {
    printText("<input type=\"file\"");
    printAttribute("id", name);
    printAttribute("name", name);
    printAttribute("form", form);
    if (!accept.empty()) {
        printAttribute("accept", accept);
    }
    if (width > 0) {
        printAttribute("size", std::to_string(width));
    }
    if (longestName > 0) {
        printAttribute("maxlength", std::to_string(longestName));
    }
    printText(">");
}

bool SelectFile::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
