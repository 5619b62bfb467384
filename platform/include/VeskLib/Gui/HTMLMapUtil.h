#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

class HTMLMapUtil {
public:
    // Adds `component` to `components` under `name`, and takes ownership. Deletes a component that
    // had this name before, so the last one added is printed. If this throws, the map is unchanged
    // and the caller still owns `component`.
    static void insertIntoMap(std::map<std::string, HTMLComponent*>& components,
                              const std::string& name, HTMLComponent* component);
};

}  // namespace VeskLib::Gui
