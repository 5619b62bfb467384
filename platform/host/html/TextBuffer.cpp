#include "platform/host/html/TextBuffer.h"

namespace VeskLib::Host {

std::streamsize TextBuffer::xsputn(const char* characters, std::streamsize count) {
    text.append(characters, static_cast<std::size_t>(count));
    return count;
}

TextBuffer::int_type TextBuffer::overflow(int_type character) {
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        text += traits_type::to_char_type(character);
    }
    return traits_type::not_eof(character);
}

}  // namespace VeskLib::Host
