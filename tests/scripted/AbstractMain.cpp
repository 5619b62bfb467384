#include <VeskLib/Gui/AbstractMain.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

#include <utility>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

int AbstractMain::exec() {
    record("exec");
    const int result = individualProc();
    return script().exitStatus.value_or(result);
}

void AbstractMain::getCookie() {
    record("getCookie");
    sessionText = script().sessionText.value_or(sessionText);
    messageSet = script().messageSet.value_or(messageSet);
}

void AbstractMain::guiCheckSession(bool showError) {
    record("guiCheckSession " + toText(showError));
    if (!script().sessionIsValid) {
        throw RequestEnded{"guiCheckSession"};
    }
    authority = script().authority;
}

void AbstractMain::errorExit(std::string titleText, std::string message) {
    record("errorExit " + std::move(titleText) + "|" + std::move(message));
    if (!script().errorExitReturns) {
        throw RequestEnded{"errorExit"};
    }
}

void AbstractMain::errorExit(std::string message, int code) {
    errorExit(std::move(message), std::to_string(code));
}

}  // namespace VeskLib::Gui
