#include <VeskLib/lmsg_getmsg.h>

#include "platform/host/text/Catalogue.h"
#include "platform/host/text/formatText.h"
#include "platform/host/text/issuedTexts.h"

#include <cstdarg>

namespace {

const std::size_t BUFFER_SIZE = 256;

// The only trace text that the program also shows.
const int SHOWN_NUMBER = VeskLib::Host::UNAVAILABLE_TEXT;

}  // namespace

char* lmsg_getmsg(int number, char* buffer, ...) {
    using namespace VeskLib::Host;
    std::va_list arguments;
    va_start(arguments, buffer);
    formatText(buffer, BUFFER_SIZE, findText(ENGLISH, TextSet::TRACE, number), number, arguments);
    va_end(arguments);
    if (number == SHOWN_NUMBER) {
        noteIssuedText(buffer, {.number = number, .code = 0, .traced = true});
    }
    return buffer;
}
