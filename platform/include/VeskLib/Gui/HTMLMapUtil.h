#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

class HTMLMapUtil {
public:
    // Puts `component` into `components` under `name`; the map owns it from then on. A component
    // that stood there is deleted: the one inserted last is the one printed. When this throws,
    // the map is unchanged and the caller still owns `component`.
    static void insertIntoMap(std::map<std::string, HTMLComponent*>& components,
                              const std::string& name, HTMLComponent* component);
};

}  // namespace VeskLib::Gui
