#include "tests/support/markup.h"

#include "tests/support/encodeUTF8.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace VeskLib::Test {

namespace {

bool isSpace(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

std::string toLower(std::string_view text) {
    std::string lower;
    for (const char character : text) {
        lower += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return lower;
}

// Returns the character of the reference `name`, given without "&" and ";", or "" if it is unknown.
std::string resolveReference(const std::string& name) {
    static const std::map<std::string, std::string> NAMED = {
        {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}};
    const auto known = NAMED.find(name);
    if (known != NAMED.end()) {
        return known->second;
    }
    if (name.size() < 2 || name[0] != '#') {
        return {};
    }
    const bool hexadecimal = name[1] == 'x' || name[1] == 'X';
    return encodeUTF8(
        std::strtoul(name.c_str() + (hexadecimal ? 2 : 1), nullptr, hexadecimal ? 16 : 10));
}

// Parses markup as a browser does.
class MarkupReader {
public:
    explicit MarkupReader(std::string_view html) : html(html) {}

    void read() {
        while (position < html.size()) {
            if (html.compare(position, 4, "<!--") == 0) {
                skipComment();
            } else if (html[position] == '<' && startsTag(position + 1)) {
                readTag();
            } else {
                text += html[position++];
            }
        }
    }

    std::vector<Tag> tags;
    std::string text;
    std::vector<std::string> scripts;

private:
    bool startsTag(std::size_t at) const {
        return at < html.size() && (std::isalpha(static_cast<unsigned char>(html[at])) != 0 ||
                                    html[at] == '/' || html[at] == '!');
    }

    void skipComment() {
        const std::size_t end = html.find("-->", position);
        position = end == std::string_view::npos ? html.size() : end + 3;
    }

    char current() const { return position < html.size() ? html[position] : '>'; }

    void skipSpace() {
        while (isSpace(current())) {
            ++position;
        }
    }

    std::string readWord(std::string_view ends) {
        const std::size_t start = position;
        while (position < html.size() && !isSpace(html[position]) &&
               ends.find(html[position]) == std::string_view::npos) {
            ++position;
        }
        return std::string(html.substr(start, position - start));
    }

    std::string readValue() {
        const char quote = current();
        if (quote != '"' && quote != '\'') {
            return readWord(">");
        }
        const std::size_t start = ++position;
        position = std::min(html.find(quote, start), html.size());
        const std::string_view value = html.substr(start, position - start);
        ++position;
        return std::string(value);
    }

    void readTag() {
        ++position;
        Tag& tag = tags.emplace_back();
        tag.name = toLower(readWord(">"));
        for (skipSpace(); current() != '>'; skipSpace()) {
            std::string& value = tag.attributes[toLower(readWord("=>"))];
            if (current() == '=') {
                ++position;
                value = unescapeHTML(readValue());
            }
        }
        ++position;
        if (tag.name == "script") {
            const std::size_t start = position;
            position = std::min(toLower(html).find("</script", start), html.size());
            scripts.emplace_back(html.substr(start, position - start));
        }
    }

    std::string_view html;
    std::size_t position = 0;
};

MarkupReader readMarkup(std::string_view html) {
    MarkupReader reader(html);
    reader.read();
    return reader;
}

}  // namespace

std::string unescapeHTML(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t end = text[i] == '&' ? text.find(';', i) : std::string_view::npos;
        const std::string resolved =
            end == std::string_view::npos
                ? std::string()
                : resolveReference(std::string(text.substr(i + 1, end - i - 1)));
        if (resolved.empty()) {
            plain += text[i];
        } else {
            plain += resolved;
            i = end;
        }
    }
    return plain;
}

std::vector<Tag> tagsOf(std::string_view html) {
    return readMarkup(html).tags;
}

std::vector<std::string> tagNamesOf(std::string_view html) {
    std::vector<std::string> names;
    for (const Tag& tag : tagsOf(html)) {
        names.push_back(tag.name);
    }
    return names;
}

std::vector<Tag> tagsOf(std::string_view html, std::string_view name) {
    std::vector<Tag> found;
    for (const Tag& tag : tagsOf(html)) {
        if (tag.name == name) {
            found.push_back(tag);
        }
    }
    return found;
}

std::string textOf(std::string_view html) {
    return unescapeHTML(readMarkup(html).text);
}

std::vector<std::string> scriptsOf(std::string_view html) {
    return readMarkup(html).scripts;
}

}  // namespace VeskLib::Test
