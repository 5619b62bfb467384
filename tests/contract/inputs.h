#pragma once

#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <VeskLib/Gui/HTMLComponent.h>

#include <vector>

namespace VeskLib::Test {

// The display mode in which choices can be taken.
inline const int ALLOWED = 2;

// The input elements that a component prints.
inline std::vector<Tag> inputsOf(const Gui::HTMLComponent& component) {
    return tagsOf(printedHTML(component), "input");
}

}  // namespace VeskLib::Test
