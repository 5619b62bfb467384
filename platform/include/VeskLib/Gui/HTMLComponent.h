#pragma once

namespace VeskLib::Gui {

// A part of a page that prints itself to the standard output.
//
// The component map or container that a component is added to takes ownership and deletes it.
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
