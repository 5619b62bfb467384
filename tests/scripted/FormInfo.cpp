#include <VeskLib/Gui/FormInfo.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

FormInfo* FormInfo::myInstance = nullptr;

struct FormInfo::State {
    bool terminated = false;
};

FormInfo::FormInfo() : state(std::make_unique<State>()) {
    objectMade(this, "FormInfo()");
}

FormInfo::~FormInfo() {
    objectDeleted(this);
}

bool FormInfo::getFormData(const std::string& name, std::string& value) const {
    record("getFormData " + name);
    if (script().formError) {
        throw makeScriptedException(*script().formError);
    }
    const auto field = script().formFields.find(name);
    if (state->terminated || field == script().formFields.end()) {
        return false;
    }
    value = field->second;
    return true;
}

std::string FormInfo::getUploadFileName() const {
    record("getUploadFileName");
    return state->terminated ? "" : script().uploadName;
}

std::string FormInfo::getUploadFilePath() const {
    record("getUploadFilePath");
    if (script().uploadPathError) {
        throw makeScriptedException(*script().uploadPathError);
    }
    return state->terminated ? "" : script().uploadPath;
}

unsigned int FormInfo::getUploadFileSize() const {
    record("getUploadFileSize");
    return state->terminated ? 0 : script().uploadSize;
}

void FormInfo::terminate() {
    record("terminate");
    state->terminated = true;
}

}  // namespace VeskLib::Gui
