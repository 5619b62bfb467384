#include "client/page/Markup.h"

#include "client/Failure.h"

namespace Efictl {

namespace {

const std::size_t LARGEST_TREE = 1792 * 1024;

void* allocate(void* heap, std::size_t size) {
    return static_cast<BoundedHeap*>(heap)->allocate(size);
}

void release(void* heap, void* memory) {
    static_cast<BoundedHeap*>(heap)->release(memory);
}

// Returns null if the heap is too small. Must not have local objects with destructors, because
// longjmp() may skip them.
GumboOutput* parseWithin(BoundedHeap& heap, const char* page, std::size_t size) {
    GumboOptions options = kGumboDefaultOptions;
    options.allocator = allocate;
    options.deallocator = release;
    options.userdata = &heap;
    options.max_errors = 0;
    // NOLINTNEXTLINE(cert-err52-cpp): see BoundedHeap.
    if (setjmp(heap.escape) != 0) {
        return nullptr;
    }
    return gumbo_parse_with_options(&options, page, size);
}

bool isElement(const GumboNode* node) {
    return node->type == GUMBO_NODE_ELEMENT || node->type == GUMBO_NODE_TEMPLATE;
}

bool isText(const GumboNode* node) {
    return node->type == GUMBO_NODE_TEXT || node->type == GUMBO_NODE_WHITESPACE ||
           node->type == GUMBO_NODE_CDATA;
}

// Returns the node after `node` in document order, null after the last one in `root`. Not
// recursive, because nesting is unlimited.
const GumboNode* nextNode(const GumboNode* node, const GumboNode* root) {
    if (isElement(node) && node->v.element.children.length != 0) {
        return static_cast<const GumboNode*>(node->v.element.children.data[0]);
    }
    while (node != root) {
        const GumboVector& siblings = node->parent->v.element.children;
        const std::size_t next = node->index_within_parent + 1;
        if (next < siblings.length) {
            return static_cast<const GumboNode*>(siblings.data[next]);
        }
        node = node->parent;
    }
    return nullptr;
}

}  // namespace

bool Element::has(const char* attribute) const {
    return gumbo_get_attribute(&node->v.element.attributes, attribute) != nullptr;
}

std::string Element::attribute(const char* name) const {
    const GumboAttribute* const found = gumbo_get_attribute(&node->v.element.attributes, name);
    return found == nullptr ? "" : found->value;
}

std::string Element::text() const {
    std::string text;
    for (const GumboNode* each = node; each != nullptr; each = nextNode(each, node)) {
        if (isText(each)) {
            text += each->v.text.text;
        }
    }
    return text;
}

std::vector<Element> Element::all(const Question& isWanted) const {
    std::vector<Element> found;
    for (const GumboNode* each = nextNode(node, node); each != nullptr;
         each = nextNode(each, node)) {
        if (isElement(each) && isWanted(Element(each))) {
            found.emplace_back(each);
        }
    }
    return found;
}

Element Element::first(const Question& isWanted) const {
    for (const GumboNode* each = nextNode(node, node); each != nullptr;
         each = nextNode(each, node)) {
        if (isElement(each) && isWanted(Element(each))) {
            return Element(each);
        }
    }
    return Element(nullptr);
}

Element::Question hasTag(GumboTag tag) {
    return [tag](const Element& element) { return element.is(tag); };
}

Element::Question hasAttribute(const char* name) {
    return [name](const Element& element) { return element.has(name); };
}

Element::Question hasAttribute(const char* name, const std::string& value) {
    return [name, value](const Element& element) {
        return element.has(name) && element.attribute(name) == value;
    };
}

Markup::Markup(std::string_view page) : heap(LARGEST_TREE) {
    output = parseWithin(heap, page.data(), page.size());
    if (output == nullptr) {
        throw Failure(ExitCode::UNREACHABLE,
                      "The response has more elements than any page of a board.");
    }
}

}  // namespace Efictl
