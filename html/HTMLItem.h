#pragma once

#include "html/HTMLItemInterface.h"

#include <VeskLib/Gui/HTMLCodeGenerator.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// A part of a page that has its own skeleton, such as a table row.
class HTMLItem : public HTMLItemInterface {
public:
    // `skeletonFile` is the path of the skeleton on the board, before getCGIPath().
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
