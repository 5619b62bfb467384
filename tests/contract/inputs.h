#pragma once

#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// The display mode in which inputs are enabled.
inline const int ALLOWED = 2;

// Returns the input elements that a component prints.
inline std::vector<Tag> inputsOf(const Gui::HTMLComponent& component) {
    return tagsOf(printedHTML(component), "input");
}

// Returns the value of an attribute, or a text that no component prints if it is missing.
inline std::string attribute(const Tag& tag, const std::string& name) {
    const auto found = tag.attributes.find(name);
    return found == tag.attributes.end() ? "(no attribute " + name + ")" : found->second;
}

// Returns true if the only label belongs to the only input: by its attribute `for`, or because it
// encloses the input.
inline bool hasLabel(std::string_view html) {
    const std::vector<Tag> inputs = tagsOf(html, "input");
    const std::vector<Tag> labels = tagsOf(html, "label");
    if (inputs.size() != 1 || labels.size() != 1) {
        return false;
    }
    const std::size_t input = html.find("<input");
    const bool inside = html.find("<label") < input && input < html.find("</label");
    return inside || attribute(labels[0], "for") == attribute(inputs[0], "id");
}

}  // namespace VeskLib::Test
