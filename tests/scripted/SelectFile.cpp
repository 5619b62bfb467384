#include <VeskLib/Gui/SelectFile.h>

#include "tests/scripted/Recorder.h"

#include <iostream>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

SelectFile::SelectFile(const std::string& name, const std::string& accept, const std::string& form,
                       int width, int longestName)
    : name(name), accept(accept), form(form), width(width), longestName(longestName) {
    objectMade(this, describe("SelectFile", name, accept, form, width, longestName));
}

SelectFile::~SelectFile() {
    objectDeleted(this);
}

void SelectFile::printHTML() const {
    std::cout << describe("SelectFile", name, accept, form, width, longestName);
}

bool SelectFile::isError() const {
    return false;
}

}  // namespace VeskLib::Gui
