#include <VeskLib/Gui/TextString.h>

#include "tests/scripted/Recorder.h"

#include <iostream>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

TextString::TextString(const std::string& text, bool emphasized, bool readyToPrint, int size)
    : text(text), emphasized(emphasized), readyToPrint(readyToPrint), size(size) {
    objectMade(this, describe("TextString", text, emphasized, readyToPrint, size));
}

TextString::~TextString() {
    objectDeleted(this);
}

void TextString::printHTML() const {
    std::cout << describe("TextString", text, emphasized, readyToPrint, size);
}

bool TextString::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
