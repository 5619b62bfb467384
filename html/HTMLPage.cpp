#include <VeskLib/Gui/HTMLPage.h>

#include "html/componentMaps.h"

namespace VeskLib::Gui {

HTMLPage::~HTMLPage() {
    delete generator;
    deleteComponents(componentMap);
}

}  // namespace VeskLib::Gui
