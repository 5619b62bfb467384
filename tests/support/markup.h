#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// A tag as a browser parses it. The name of an end tag begins with a slash, as in "/p".
struct Tag {
    std::string name;
    std::map<std::string, std::string> attributes;  // values unescaped
};

// Returns `text` with its character references resolved, as a browser shows it.
std::string unescapeHTML(std::string_view text);

// Returns the tags in document order. The content of scripts is not parsed.
std::vector<Tag> tagsOf(std::string_view html);

// Returns the names of the tags. They change if a text that is not escaped adds markup.
std::vector<std::string> tagNamesOf(std::string_view html);

// Returns the tags of this name.
std::vector<Tag> tagsOf(std::string_view html, std::string_view name);

// Returns the text between the tags, unescaped and without scripts.
std::string textOf(std::string_view html);

// Returns the source of each script element. As in a browser, it ends at the first "</script".
std::vector<std::string> scriptsOf(std::string_view html);

}  // namespace VeskLib::Test
