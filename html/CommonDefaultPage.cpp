#include <VeskLib/Gui/CommonDefaultPage.h>

#include "html/componentMaps.h"

namespace VeskLib::Gui {

namespace {

const unsigned short TRACE_MODULE = 29697;

// Creates the page's trace log. Deletes `generator` if that throws, because the page's destructor
// does not run then.
trace::VeskTrace makeTrace(HTMLCodeGenerator* generator) {
    try {
        return {1, 2, TRACE_MODULE};
    } catch (...) {
        delete generator;
        throw;
    }
}

}  // namespace

CommonDefaultPage::CommonDefaultPage(MessageMgr& messageMgr, int* displayMode,
                                     const std::string& skeletonFile)
    : generator(new HTMLCodeGenerator(skeletonFile, &componentMap)),
      messageMgr(messageMgr),
      trace(makeTrace(generator)),
      displayMode(displayMode),
      traceModule(TRACE_MODULE),
      errorFlag(false),
      alertFlag(false) {
}

CommonDefaultPage::~CommonDefaultPage() {
    deleteComponents(componentMap);
    delete generator;
}

void CommonDefaultPage::printHTML() const {
    generator->printHTML();
}

bool CommonDefaultPage::isError() const {
    return errorFlag;
}

void CommonDefaultPage::makeDispPage() {
}

void CommonDefaultPage::makeConfigPage() {
}

bool CommonDefaultPage::isAlert() const {
    return alertFlag;
}

const std::string& CommonDefaultPage::getMessage() const {
    return message;
}

}  // namespace VeskLib::Gui
