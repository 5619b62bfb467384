#include <VeskLib/Gui/HTMLMapUtil.h>

#include "tests/scripted/Recorder.h"

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

void HTMLMapUtil::insertIntoMap(std::map<std::string, HTMLComponent*>& components,
                                const std::string& name, HTMLComponent* component) {
    HTMLComponent*& place = components[name];
    if (place == nullptr) {
        record("insertIntoMap " + name);
    } else {
        record("insertIntoMap " + name + ", which displaces");
        delete place;
    }
    place = component;
}

}  // namespace VeskLib::Gui
