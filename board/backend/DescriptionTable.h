#pragma once

#include <toml++/toml.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace VeskLib::Board {

// One table of a board description, read key by key. Errors throw std::runtime_error with the file
// and the position of the offending value.
class DescriptionTable {
public:
    // `table` must outlive the object.
    DescriptionTable(const std::string& file, const toml::table& table)
        : file(file), table(table) {}

    // Return the value of `key`. A missing key throws, unless there is a default `absent`.
    unsigned int readNumber(const char* key, unsigned int largest);
    unsigned int readNumber(const char* key, unsigned int largest, unsigned int absent);
    std::string readText(const char* key, std::size_t longest);
    std::string readText(const char* key, std::size_t longest, const char* absent);
    bool readFlag(const char* key, bool absent);

    // Return the elements of the list `key`; none if it is absent.
    std::vector<unsigned int> readNumbers(const char* key, unsigned int largest);
    std::vector<std::string> readTexts(const char* key, std::size_t longest);

    // Calls `read` for each table of the array `key`, which may be absent.
    void readTables(const char* key, const std::function<void(DescriptionTable&)>& read);

    // Returns the table `key`, or null if it is absent.
    const toml::table* readTable(const char* key);

    // Throws if the table has a key that was not read, which is most likely a typing error.
    void refuseUnknownKeys() const;

    // Throws with the position of the value of `key`, or of the table if it has none.
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
