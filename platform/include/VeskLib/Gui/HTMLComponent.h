#pragma once

namespace VeskLib::Gui {

// A part of a page that prints itself to the standard output.
//
// A component that was handed to a component map or a container belongs to that holder, which
// deletes it. Nobody else does.
class HTMLComponent {
public:
    HTMLComponent() = default;
    HTMLComponent(const HTMLComponent&) = delete;
    HTMLComponent& operator=(const HTMLComponent&) = delete;
    virtual ~HTMLComponent() = default;

    virtual void printHTML() const = 0;
    virtual bool isError() const = 0;
};

}  // namespace VeskLib::Gui
