#include <VeskLib/Gui/TextString.h>

#include "platform/host/html/escape.h"

#include <iostream>

namespace VeskLib::Gui {

TextString::TextString(const std::string& text, bool emphasized, bool readyToPrint, int size)
    : text(text), emphasized(emphasized), readyToPrint(readyToPrint), size(size) {
}

TextString::~TextString() = default;

void TextString::printHTML() const {
    if (emphasized) {
        std::cout << "<strong>";
    }
    std::cout << (readyToPrint ? text : Host::escapeHTML(text));
    if (emphasized) {
        std::cout << "</strong>";
    }
}

bool TextString::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
