#include <VeskLib/Gui/AbstractMain.h>

namespace VeskLib::Gui {

namespace {

const int NO_FUNCTION_YET = 159;

// Returns the form data. It belongs to the process and outlives the main object.
FormInfo* shareFormInfo() {
    if (FormInfo::myInstance == nullptr) {
        FormInfo::myInstance = new FormInfo;
    }
    return FormInfo::myInstance;
}

}  // namespace

AbstractMain::AbstractMain()
    : trace(1, 2, 29696),
      formInfo(shareFormInfo()),
      requester(nullptr),
      messageMgr(nullptr),
      functionId(NO_FUNCTION_YET),
      messageSet(0),
      authority(),
      requestEnded(false),
      responseStatus(0) {
    getCookie();
}

AbstractMain::~AbstractMain() {
    delete requester;
    delete messageMgr;
}

}  // namespace VeskLib::Gui
