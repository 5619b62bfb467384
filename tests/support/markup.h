#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// A tag as a browser sees it; "/p" is the name of an end tag.
struct Tag {
    std::string name;
    std::map<std::string, std::string> attributes;  // values unescaped
};

// `text` with its character references replaced, as a browser shows it.
std::string unescapeHTML(std::string_view text);

// The tags in the order in which they stand. What stands inside a script is no markup.
std::vector<Tag> tagsOf(std::string_view html);

// The names of the tags only: what a text that leaves its place would change.
std::vector<std::string> tagNamesOf(std::string_view html);

// The tags of one name.
std::vector<Tag> tagsOf(std::string_view html, std::string_view name);

// What stands between the tags, unescaped, scripts left out.
std::string textOf(std::string_view html);

// The source of every script element, as far as a browser reads it: to the first "</script".
std::vector<std::string> scriptsOf(std::string_view html);

}  // namespace VeskLib::Test
