#include <VeskLib/Gui/TextString.h>

#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"

namespace VeskLib::Gui {

TextString::TextString(const std::string& text, bool emphasized, bool readyToPrint, int size)
    : text(text), emphasized(emphasized), readyToPrint(readyToPrint), size(size) {
}

TextString::~TextString() = default;

void TextString::printHTML() const {
    if (emphasized) {
        Host::printText("<strong>");
    }
    if (readyToPrint) {
        Host::printText(text);
    } else {
        Host::printEscaped(text);
    }
    if (emphasized) {
        Host::printText("</strong>");
    }
}

bool TextString::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
