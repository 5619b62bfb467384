#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <string>

namespace VeskLib::Test {

// Counts calls and deletions of components.
struct ProbeCounts {
    int printed = 0;
    int deleted = 0;
};

// A component that prints a text unescaped and counts prints and deletions.
class ProbeComponent : public Gui::HTMLComponent {
public:
    // `counts` must outlive the component.
    ProbeComponent(std::string text, ProbeCounts& counts);
    ~ProbeComponent() override;

    void printHTML() const override;
    bool isError() const override;

private:
    std::string text;
    ProbeCounts& counts;
};

}  // namespace VeskLib::Test
