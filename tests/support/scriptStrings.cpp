#include "tests/support/scriptStrings.h"

#include "tests/support/encodeUTF8.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

namespace VeskLib::Test {

namespace {

bool isQuote(char character) {
    return character == '"' || character == '\'' || character == '`';
}

// Finds the string literals and comments of a script.
class ScriptReader {
public:
    ScriptReader(std::string_view script, std::string_view function)
        : script(script), call(std::string(function) + "(") {}

    void read() {
        while (position < script.size()) {
            if (script.compare(position, 2, "//") == 0) {
                position = std::min(script.find('\n', position), script.size());
            } else if (script.compare(position, 2, "/*") == 0) {
                position = std::min(script.find("*/", position), script.size() - 2) + 2;
            } else if (isQuote(script[position])) {
                const bool isArgument = rest.ends_with(call);
                const std::string value = readLiteral();
                rest += "\"\"";
                if (isArgument) {
                    arguments.push_back(value);
                }
            } else {
                rest += script[position++];
            }
        }
    }

    std::vector<std::string> arguments;
    std::string rest;  // without comments, and with empty literals

private:
    bool atLineEnd() const {
        const std::string_view next = script.substr(position, 3);
        return next.starts_with('\n') || next.starts_with('\r') || next == "\xE2\x80\xA8" ||
               next == "\xE2\x80\xA9";
    }

    std::string readLiteral() {
        const std::size_t start = position++;
        std::string value;
        while (position < script.size() && script[position] != script[start] && !atLineEnd()) {
            if (script[position] == '\\') {
                value += readEscape();
            } else {
                value += script[position++];
            }
        }
        EXPECT_TRUE(position < script.size() && script[position] == script[start])
            << "an unterminated string literal: " << script.substr(start);
        ++position;
        return value;
    }

    std::string readEscape() {
        static const std::map<char, char> CONTROLS = {{'n', '\n'}, {'r', '\r'}, {'t', '\t'},
                                                      {'b', '\b'}, {'f', '\f'}, {'v', '\v'}};
        ++position;
        const char kind = position < script.size() ? script[position++] : '\0';
        if (kind == 'x' || kind == 'u') {
            const std::size_t digits = kind == 'x' ? 2 : 4;
            const std::string code(script.substr(position, digits));
            position += code.size();
            return encodeUTF8(std::strtoul(code.c_str(), nullptr, 16));
        }
        const auto control = CONTROLS.find(kind);
        return {control == CONTROLS.end() ? kind : control->second};
    }

    std::string_view script;
    std::string call;
    std::size_t position = 0;
};

}  // namespace

std::vector<std::string> stringArgumentsOf(std::string_view script, std::string_view function) {
    ScriptReader reader(script, function);
    reader.read();
    return reader.arguments;
}

std::string withoutStrings(std::string_view script) {
    ScriptReader reader(script, "");
    reader.read();
    return reader.rest;
}

}  // namespace VeskLib::Test
