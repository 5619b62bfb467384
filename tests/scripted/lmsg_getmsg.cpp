#include <VeskLib/lmsg_getmsg.h>

#include "tests/scripted/Recorder.h"

#include <cstdarg>
#include <cstring>
#include <string>

namespace {

const std::size_t BUFFER_SIZE = 256;

// "lmsg 20011 [text] [13]", with the arguments that the catalogue's text takes.
std::string render(int number, va_list arguments) {
    std::string text = "lmsg " + std::to_string(number);
    switch (number) {
        case 20011:
        case 20034:
            text += " [" + std::string(va_arg(arguments, const char*)) + "]";
            text += " [" + std::to_string(va_arg(arguments, int)) + "]";
            break;
        case 107:
        case 20003:
        case 20020:
            text += " [" + std::string(va_arg(arguments, const char*)) + "]";
            break;
        default:
            text += " of an unknown number";
            break;
    }
    return text;
}

}  // namespace

char* lmsg_getmsg(int number, char* buffer, ...) {
    va_list arguments;
    va_start(arguments, buffer);
    const std::string text = render(number, arguments);
    va_end(arguments);
    VeskLib::Scripted::record("lmsg_getmsg " + std::to_string(number));
    // Uses all the bytes that a caller must give, as a long text would.
    std::memset(buffer, '\0', BUFFER_SIZE);
    return std::strncpy(buffer, text.c_str(), BUFFER_SIZE - 1);
}
