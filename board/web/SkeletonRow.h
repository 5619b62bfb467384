#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Board {

// One row of a table: a skeleton with texts.
class SkeletonRow {
public:
    // Prints to std::cout. Throws PException if the skeleton cannot be used.
    void print() const;

protected:
    explicit SkeletonRow(const char* skeleton) : skeleton(skeleton) {}

    // Adds a text as component `name`, escaped. Empty texts are not added, so that the skeleton can
    // test for them.
    void put(const std::string& name, const std::string& text);

private:
    const char* skeleton;
    std::vector<std::unique_ptr<Gui::HTMLComponent>> owned;
    std::map<std::string, Gui::HTMLComponent*> components;
};

// Returns a caption in the language of the request.
std::string caption(int number);

}  // namespace VeskLib::Board
