#include <VeskLib/lmsg_getmsg.h>

#include "tests/scripted/Recorder.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

const std::size_t BUFFER_SIZE = 256;

// Returns the format of the arguments of text `number`.
const char* argumentsOf(int number) {
    switch (number) {
        case 20011:
        case 20034:
            return " [%s] [%d]";
        case 107:
        case 20003:
        case 20020:
            return " [%s]";
        default:
            return " of an unknown number";
    }
}

}  // namespace

// Writes for instance "lmsg 20011 [text] [13]".
char* lmsg_getmsg(int number, char* buffer, ...) {
    VeskLib::Scripted::record("lmsg_getmsg " + std::to_string(number));
    // Writes all the bytes that a caller must provide, as a long text would.
    std::memset(buffer, '\0', BUFFER_SIZE);
    const std::string format = "lmsg " + std::to_string(number) + argumentsOf(number);
    va_list arguments;
    va_start(arguments, buffer);
    std::vsnprintf(buffer, BUFFER_SIZE, format.c_str(), arguments);
    va_end(arguments);
    return buffer;
}
