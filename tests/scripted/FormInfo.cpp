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

void FormInfo::terminate() {
    record("terminate");
    state->terminated = true;
}

}  // namespace VeskLib::Gui
