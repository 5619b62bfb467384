#pragma once

#include <streambuf>
#include <string>
#include <string_view>

namespace VeskLib::Host {

// Collects what is printed to a stream. Printing throws std::bad_alloc if there is not enough
// memory.
class TextBuffer : public std::streambuf {
public:
    // Makes room for a text of `size` bytes.
    void reserve(std::size_t size) { text.reserve(size); }

    // Returns what was printed. The view is valid until something is printed.
    std::string_view view() const { return text; }

    void clear() { text.clear(); }

protected:
    std::streamsize xsputn(const char* characters, std::streamsize count) override;
    int_type overflow(int_type character) override;

private:
    std::string text;
};

}  // namespace VeskLib::Host
