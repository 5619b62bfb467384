#pragma once

#include "client/page/BoundedHeap.h"

#include <gumbo.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Efictl {

// An element of a page. Lives no longer than its Markup.
class Element {
public:
    explicit Element(const GumboNode* node) : node(node) {}

    // Returns whether there is such an element; nothing else may be asked of one that is not there.
    explicit operator bool() const { return node != nullptr; }

    bool is(GumboTag tag) const { return node->v.element.tag == tag; }
    bool has(const char* attribute) const;

    // Returns the value of an attribute; empty if there is none.
    std::string attribute(const char* name) const;

    // Returns all text in it, as it is.
    std::string text() const;

    using Question = std::function<bool(const Element&)>;

    // Returns the elements in it for which `isWanted` says yes, in the order of the page.
    std::vector<Element> all(const Question& isWanted) const;

    // Returns the first of them, or one that is not there.
    Element first(const Question& isWanted) const;

private:
    const GumboNode* node;
};

// Questions for all() and first().
Element::Question hasTag(GumboTag tag);
Element::Question hasAttribute(const char* name);
Element::Question hasAttribute(const char* name, const std::string& value);

// A page that was taken apart as browsers do it. Takes less than 2 MiB, whatever the page is.
class Markup {
public:
    // Throws Failure (UNREACHABLE) for a page of more elements than any page of a board.
    explicit Markup(std::string_view page);

    Element root() const { return Element(output->root); }

private:
    BoundedHeap heap;
    GumboOutput* output = nullptr;
};

}  // namespace Efictl
