#pragma once

#include "html/HTMLItemInterface.h"

#include <VeskLib/Gui/HTMLCodeGenerator.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// A part of a page printed from a skeleton of its own, such as a table row.
class HTMLItem : public HTMLItemInterface {
public:
    explicit HTMLItem(const std::string& skeletonFile);

    // Deletes the components in the map's order.
    ~HTMLItem() override;

    void printHTML() const override;
    bool isError() const override;
    void add(const std::string& name, HTMLComponent* component) override;

private:
    std::map<std::string, HTMLComponent*> componentMap;
    HTMLCodeGenerator generator;
};

}  // namespace VeskLib::Gui
