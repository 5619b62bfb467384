#pragma once

#include "client/page/BoundedHeap.h"

#include <gumbo.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Efictl {

// An element of a page; may be empty. Its Markup must outlive it.
class Element {
public:
    explicit Element(const GumboNode* node) : node(node) {}

    // Returns false for no element; then no other member may be called.
    explicit operator bool() const { return node != nullptr; }

    bool is(GumboTag tag) const { return node->v.element.tag == tag; }
    bool has(const char* attribute) const;

    // Returns the value of an attribute; empty if there is none.
    std::string attribute(const char* name) const;

    // Returns the text of the element and its descendants, unchanged.
    std::string text() const;

    using Question = std::function<bool(const Element&)>;

    // Returns the descendants for which `isWanted` returns true, in document order.
    std::vector<Element> all(const Question& isWanted) const;

    // Returns the first such descendant, or no element.
    Element first(const Question& isWanted) const;

private:
    const GumboNode* node;
};

// Predicates for all() and first().
Element::Question hasTag(GumboTag tag);
Element::Question hasAttribute(const char* name);
Element::Question hasAttribute(const char* name, const std::string& value);

// A page, parsed as browsers parse it. Uses less than 2 MiB for any page.
class Markup {
public:
    // Throws Failure (UNREACHABLE) if the page has more elements than any page of a board.
    explicit Markup(std::string_view page);

    Element root() const { return Element(output->root); }

private:
    BoundedHeap heap;
    GumboOutput* output = nullptr;
};

}  // namespace Efictl
