#include "board/backend/DescriptionTable.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace VeskLib::Board {

namespace {

std::string quoted(std::string_view key) {
    return "\"" + std::string(key) + "\"";
}

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

}  // namespace

unsigned int DescriptionTable::readNumber(const char* key, unsigned int largest) {
    return numberOf(need(key), key, largest);
}

unsigned int DescriptionTable::readNumber(const char* key, unsigned int largest,
                                          unsigned int absent) {
    const toml::node* node = find(key);
    return node == nullptr ? absent : numberOf(*node, key, largest);
}

std::string DescriptionTable::readText(const char* key, std::size_t longest) {
    return textOf(need(key), key, longest);
}

std::string DescriptionTable::readText(const char* key, std::size_t longest, const char* absent) {
    const toml::node* node = find(key);
    return node == nullptr ? absent : textOf(*node, key, longest);
}

bool DescriptionTable::readFlag(const char* key, bool absent) {
    const toml::node* node = find(key);
    if (node == nullptr) {
        return absent;
    }
    if (!node->is_boolean()) {
        failAt(*node, quoted(key) + " must be true or false");
    }
    return node->as_boolean()->get();
}

std::vector<unsigned int> DescriptionTable::readNumbers(const char* key, unsigned int largest) {
    std::vector<unsigned int> numbers;
    if (const toml::array* list = findList(key, "numbers")) {
        for (const toml::node& element : *list) {
            numbers.push_back(numberOf(element, key, largest));
        }
    }
    return numbers;
}

std::vector<std::string> DescriptionTable::readTexts(const char* key, std::size_t longest) {
    std::vector<std::string> texts;
    if (const toml::array* list = findList(key, "texts")) {
        for (const toml::node& element : *list) {
            texts.push_back(textOf(element, key, longest));
        }
    }
    return texts;
}

void DescriptionTable::readTables(const char* key,
                                  const std::function<void(DescriptionTable&)>& read) {
    const toml::node* node = find(key);
    if (node == nullptr) {
        return;
    }
    if (!node->is_array_of_tables()) {
        failAt(*node, quoted(key) + " must be written as [[" + key + "]]");
    }
    for (const toml::node& element : *node->as_array()) {
        DescriptionTable inner(file, *element.as_table());
        read(inner);
        inner.refuseUnknownKeys();
    }
}

const toml::table* DescriptionTable::readTable(const char* key) {
    const toml::node* node = find(key);
    if (node == nullptr) {
        return nullptr;
    }
    if (!node->is_table()) {
        failAt(*node, quoted(key) + " must be a table");
    }
    return node->as_table();
}

void DescriptionTable::refuseUnknownKeys() const {
    for (const auto& [key, node] : table) {
        if (std::find(asked.begin(), asked.end(), key.str()) == asked.end()) {
            failAt(node, "unknown key " + quoted(key.str()));
        }
    }
}

void DescriptionTable::fail(const char* key, const std::string& what) const {
    const toml::node* node = table.get(key);
    failAt(node == nullptr ? table : *node, what);
}

void DescriptionTable::failAt(const toml::node& node, const std::string& what) const {
    const toml::source_position position = node.source().begin;
    throw std::runtime_error(file + ":" + std::to_string(position.line) + ":" +
                             std::to_string(position.column) + ": " + what);
}

const toml::node* DescriptionTable::find(const char* key) {
    asked.emplace_back(key);
    return table.get(key);
}

const toml::node& DescriptionTable::need(const char* key) {
    const toml::node* node = find(key);
    if (node == nullptr) {
        failAt(table, quoted(key) + " is missing");
    }
    return *node;
}

const toml::array* DescriptionTable::findList(const char* key, const char* ofWhat) {
    const toml::node* node = find(key);
    if (node != nullptr && !node->is_array()) {
        failAt(*node, quoted(key) + " must be a list of " + ofWhat);
    }
    return node == nullptr ? nullptr : node->as_array();
}

unsigned int DescriptionTable::numberOf(const toml::node& node, const char* key,
                                        unsigned int largest) const {
    const std::int64_t number = node.is_integer() ? node.as_integer()->get() : -1;
    if (number < 0 || number > std::int64_t{largest}) {
        failAt(node, quoted(key) + " must be a number from 0 to " + std::to_string(largest));
    }
    return static_cast<unsigned int>(number);
}

std::string DescriptionTable::textOf(const toml::node& node, const char* key,
                                     std::size_t longest) const {
    if (!node.is_string()) {
        failAt(node, quoted(key) + " must be a text");
    }
    const std::string& text = node.as_string()->get();
    if (text.size() > longest || std::any_of(text.begin(), text.end(), isControl)) {
        failAt(node, quoted(key) + " must be at most " + std::to_string(longest) +
                         " bytes without control characters");
    }
    return text;
}

}  // namespace VeskLib::Board
