#include <VeskLib/Gui/HTMLMapUtil.h>

namespace VeskLib::Gui {

void HTMLMapUtil::insertIntoMap(std::map<std::string, HTMLComponent*>& components,
                                const std::string& name, HTMLComponent* component) {
    HTMLComponent*& place = components[name];
    const HTMLComponent* displaced = place;
    place = component;
    if (displaced != component) {
        delete displaced;
    }
}

}  // namespace VeskLib::Gui
