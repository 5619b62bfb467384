#include "tests/contract/ProbeComponent.h"

#include <iostream>
#include <utility>

namespace VeskLib::Test {

ProbeComponent::ProbeComponent(std::string text, ProbeCounts& counts)
    : text(std::move(text)), counts(counts) {
}

ProbeComponent::~ProbeComponent() {
    ++counts.deleted;
}

void ProbeComponent::printHTML() const {
    ++counts.printed;
    std::cout << text;
}

bool ProbeComponent::isError() const {
    return false;
}

}  // namespace VeskLib::Test
