#pragma once

#include "tests/scripted/Recorder.h"

#include <VeskLib/Gui/HTMLComponent.h>

#include <iostream>
#include <string>
#include <utility>

namespace VeskLib::Test {

// A component that prints its name and records its construction and deletion.
class ProbeComponent : public Gui::HTMLComponent {
public:
    explicit ProbeComponent(std::string name) : name(std::move(name)) {
        Scripted::objectMade(this, this->name);
    }
    ~ProbeComponent() override { Scripted::objectDeleted(this); }

    void printHTML() const override { std::cout << name; }
    bool isError() const override { return true; }

private:
    std::string name;
};

}  // namespace VeskLib::Test
