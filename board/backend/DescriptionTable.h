#pragma once

#include <toml++/toml.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace VeskLib::Board {

// One table of a board description, read key by key. Whatever is wrong throws std::runtime_error
// with the file and the position of the offending value.
class DescriptionTable {
public:
    // `table` must outlive the object.
    DescriptionTable(const std::string& file, const toml::table& table)
        : file(file), table(table) {}

    // A key without a value throws unless a default is given.
    unsigned int readNumber(const char* key, unsigned int largest);
    unsigned int readNumber(const char* key, unsigned int largest, unsigned int absent);
    std::string readText(const char* key, std::size_t longest);
    std::string readText(const char* key, std::size_t longest, const char* absent);
    bool readFlag(const char* key, bool absent);

    // Empty when the key is absent.
    std::vector<unsigned int> readNumbers(const char* key, unsigned int largest);
    std::vector<std::string> readTexts(const char* key, std::size_t longest);

    // Calls `read` for each table of the array `key`; not at all when it is absent.
    void readTables(const char* key, const std::function<void(DescriptionTable&)>& read);

    // The table `key`; null when it is absent.
    const toml::table* readTable(const char* key);

    // Throws when the table has a key that was not asked for: most likely a typing mistake.
    void refuseUnknownKeys() const;

    // Throws, naming the position of the value of `key`, or of the table when it has none.
    [[noreturn]] void fail(const char* key, const std::string& what) const;
    [[noreturn]] void failAt(const toml::node& node, const std::string& what) const;

private:
    const toml::node* find(const char* key);
    const toml::node& need(const char* key);
    unsigned int numberOf(const toml::node& node, const char* key, unsigned int largest) const;
    const toml::array* findList(const char* key, const char* ofWhat);
    std::string textOf(const toml::node& node, const char* key, std::size_t longest) const;

    std::string file;
    const toml::table& table;
    std::vector<std::string> asked;
};

}  // namespace VeskLib::Board
