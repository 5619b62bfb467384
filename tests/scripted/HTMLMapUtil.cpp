#include <VeskLib/Gui/HTMLMapUtil.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

void HTMLMapUtil::insertIntoMap(std::map<std::string, HTMLComponent*>& components,
                                const std::string& name, HTMLComponent* component) {
    if (const auto error = script().insertErrors.find(name); error != script().insertErrors.end()) {
        record("insertIntoMap fails for " + name);
        throw makeScriptedException(error->second);
    }
    HTMLComponent*& place = components[name];
    if (place == nullptr) {
        record("insertIntoMap " + name);
    } else {
        record("insertIntoMap " + name + ", replacing");
        delete place;
    }
    place = component;
}

}  // namespace VeskLib::Gui
