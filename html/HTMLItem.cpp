#include "html/HTMLItem.h"

#include "html/componentMaps.h"

#include <VeskLib/Gui/HTMLMapUtil.h>

namespace VeskLib::Gui {

HTMLItem::HTMLItem(const std::string& skeletonFile) : generator(skeletonFile, &componentMap) {
}

HTMLItem::~HTMLItem() {
    deleteComponents(componentMap);
}

void HTMLItem::printHTML() const {
    generator.printHTML();
}

bool HTMLItem::isError() const {
    return false;
}

void HTMLItem::add(const std::string& name, HTMLComponent* component) {
    HTMLMapUtil::insertIntoMap(componentMap, name, component);
}

}  // namespace VeskLib::Gui
