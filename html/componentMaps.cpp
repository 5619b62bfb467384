#include "html/componentMaps.h"

#include <VeskLib/Gui/HTMLMapUtil.h>

namespace VeskLib::Gui {

void insertComponent(std::map<std::string, HTMLComponent*>& components, const std::string& name,
                     std::unique_ptr<HTMLComponent> component) {
    HTMLMapUtil::insertIntoMap(components, name, component.get());
    static_cast<void>(component.release());
}

void deleteComponents(std::map<std::string, HTMLComponent*>& components) {
    for (const auto& entry : components) {
        delete entry.second;
    }
    components.clear();
}

}  // namespace VeskLib::Gui
